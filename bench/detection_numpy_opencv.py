#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Finds hot pixels by the detector's rule with numpy and with OpenCV, as fast as they do it in one thread.

To be read beside bench_detection: the same sizes, the same kind of frames, the thread's time, the shortest of
some rounds. Uses what is installed of python3-numpy and python3-opencv and says what is missing.
"""
import os
import sys
import time

os.environ["OMP_NUM_THREADS"] = "1"

try:
    import numpy as np
    from numpy.lib.stride_tricks import as_strided
except ImportError:
    print("numpy and OpenCV are not compared: python3-numpy is not installed.")
    sys.exit(0)
try:
    import cv2
    cv2.setNumThreads(1)
except ImportError:
    cv2 = None

FRAMES = 10
THRESHOLD = 40
HOT_PIXELS = 300
STRIP = 1 << 16  # bytes that are worked on at a time, to stay in the cache
ROUNDS = 10
SIZES = {"5MP": (2560, 1920), "12MP": (4096, 3000), "20MP": (5472, 3648)}


def dark_frames(width, height):
    """Flat frames with noise and hot pixels."""
    random = np.random.default_rng(1)
    frames = []
    for _ in range(FRAMES):
        frame = random.integers(4, 20, width * height, dtype=np.uint8)
        frame[np.arange(1, HOT_PIXELS + 1) * frame.size // (HOT_PIXELS + 1)] = 200
        frames.append(frame)
    return frames


def read(frames):
    for frame in frames:
        frame.view(np.uint64).sum()


def average_numpy(frames):
    """One byte more than the frames have: the walk looks beyond the end of the last row."""
    averages = np.zeros(frames[0].size + 1, np.uint8)
    sums = np.empty(STRIP, np.uint16)
    for start in range(0, frames[0].size, STRIP):
        strips = [frame[start:start + STRIP] for frame in frames]
        strip = sums[:strips[0].size]
        np.add(strips[0], strips[1], out=strip, dtype=np.uint16)
        for further in strips[2:]:
            np.add(strip, further, out=strip)
        np.floor_divide(strip, np.uint16(len(frames)), out=strip)
        averages[start:start + strip.size] = strip
    return averages


def average_opencv(frames):
    averages = np.zeros(frames[0].size + 1, np.uint8)
    sums = np.empty((1, STRIP), np.float32)
    for start in range(0, frames[0].size, STRIP):
        strips = [frame[np.newaxis, start:start + STRIP] for frame in frames]
        strip = sums[:, :strips[0].size]
        strip[:] = 0
        for further in strips:
            cv2.accumulate(further, strip)
        # Rounding what lies 0.45 lower is rounding down, for tenths.
        averages[start:start + strip.size] = cv2.convertScaleAbs(strip, alpha=0.1, beta=-0.45)[0]
    return averages


def planes(mode, averages, width, height):
    """The walked planes of the averages, their first places and the pitch. Rows include x = width."""
    rows = as_strided(averages, (height, width + 1), (width, 1))
    if mode == "mono":
        return [(rows, 0, 0, 1, width * height)]
    count = (width // 2) * (height // 2)
    return [(rows[y::2, x::2], x, y, 2, count) for x, y in ((0, 0), (0, 1), (1, 0), (1, 1))]


def find(mode, average, frames, width, height):
    found = []
    for rows, x, y, pitch, count in planes(mode, average(frames), width, height):
        columns = rows.shape[1]
        elements = rows.reshape(-1)[:count]
        limit = int(elements.sum(dtype=np.uint32)) // count + THRESHOLD
        hot = np.flatnonzero(elements > min(limit, 255))
        found.append(np.stack((x + pitch * (hot % columns), y + pitch * (hot // columns)), axis=1))
    return np.concatenate(found)


def shortest(work):
    best = float("inf")
    for _ in range(ROUNDS):
        start = time.thread_time()
        work()
        best = min(best, time.thread_time() - start)
    return best * 1e3


def measure(mode, name, width, height):
    frames = dark_frames(width, height)
    ways = {"numpy": average_numpy}
    if cv2:
        ways["OpenCV"] = average_opencv
    results = [find(mode, way, frames, width, height) for way in ways.values()]
    if len(results[0]) == 0 or any(not np.array_equal(results[0], other) for other in results):
        sys.exit("numpy and OpenCV do not agree, or found nothing.")
    columns = [f"{mode}_{name}", f"read_ms={shortest(lambda: read(frames)):.1f}"]
    for label, way in ways.items():
        columns.append(f"{label}_ms={shortest(lambda: find(mode, way, frames, width, height)):.1f}")
    print(*columns, f"found={len(results[0])}", sep="  ", flush=True)


def main():
    if not cv2:
        print("OpenCV is not compared: python3-opencv is not installed.")
    for mode in ("mono", "bayer"):
        for name, (width, height) in SIZES.items():
            measure(mode, name, width, height)


main()
