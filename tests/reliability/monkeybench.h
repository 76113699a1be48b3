// SPDX-License-Identifier: MIT
// The monkey at the cables: cameras that come and go, frames, and a library that fails and lies.
#pragma once

#include "kelvosim.h"
#include "monkeykind.h"

#include <QMap>
#include <QString>

#include <string>
#include <vector>

/// A bench of small cameras. The names of the cameras are fixed; which are there is not.
class MonkeyBench final
{
public:
    /// A fresh bench. @param releases whether calls that give something back may fail, too
    void reset(bool releases, MonkeyRandom &random);

    MonkeyKinds kinds();

    /// A frame for whichever camera is open: of the right size and dark, with a few hot pixels.
    void pushDarkFrame(MonkeyRandom &random);

    /// Takes faults, lies and delays back.
    void behave();

    /// Whether a call that gives something back was told to fail: then something stays held.
    bool releaseFailed() const { return releaseWasFailed; }

    /// The lists that the cameras store; a change of them is the program's doing.
    const QMap<std::string, std::vector<kelvosim::Pixel>> &expectedLists() const { return storedLists; }

    /// The program was allowed to write: what is stored now is what is expected.
    void acceptStoredLists();

private:
    using Change = void (MonkeyBench::*)(MonkeyRandom &);

    MonkeyKind kind(const char *name, int weight, Change change);
    void addCamera(const std::string &serial, MonkeyRandom &random);
    std::string anyPresent(MonkeyRandom &random) const;
    void push(std::vector<std::uint8_t> pixels);

    void plug(MonkeyRandom &random);
    void unplug(MonkeyRandom &random);
    void addOrRemove(MonkeyRandom &random);
    void useElsewhere(MonkeyRandom &random);
    void coverLens(MonkeyRandom &random);
    void order(MonkeyRandom &random);
    void storeList(MonkeyRandom &random);
    void changeFactoryList(MonkeyRandom &random);
    void pushAnyFrame(MonkeyRandom &random);
    void failFrames(MonkeyRandom &random);
    void changeFrameRate(MonkeyRandom &random);
    void signalCameraEvent(MonkeyRandom &random);
    void signalDeviceEvent(MonkeyRandom &random);
    void lieAboutCameras(MonkeyRandom &random);
    void lieAboutTexts(MonkeyRandom &random);
    void lieAboutLists(MonkeyRandom &random);
    void tellTheTruth(MonkeyRandom &random);
    void failCall(MonkeyRandom &random);
    void failAnyCall(MonkeyRandom &random);
    void silenceErrors(MonkeyRandom &random);
    void slowDown(MonkeyRandom &random);
    void clearFaults(MonkeyRandom &random);

    std::vector<std::string> present;
    QMap<std::string, std::vector<kelvosim::Pixel>> storedLists;
    bool releasesMayFail = false;
    bool releaseWasFailed = false;
};
