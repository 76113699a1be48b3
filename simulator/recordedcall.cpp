// SPDX-License-Identifier: MIT
// Describing calls for the log.

#include "recordedcall.h"

#include <cstdio>
#include <utility>

namespace kelvosim {

namespace {

thread_local std::function<void()> visitor;
thread_local bool isVisiting = false;

std::string readable(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

} // namespace

RecordedCall::RecordedCall(const char *function, std::uint32_t handle, std::int64_t command)
    : logged(Library::instance().log.isOn())
{
    call.function = function;
    call.handle = handle;
    call.command = command;
}

RecordedCall &RecordedCall::number(double value)
{
    if (logged) {
        call.numbers.push_back(value);
        text(readable(value));
    }
    return *this;
}

RecordedCall &RecordedCall::text(const std::string &argument)
{
    if (logged)
        call.arguments += (call.arguments.empty() ? "" : ", ") + argument;
    return *this;
}

RecordedCall &RecordedCall::data(const void *bytes, std::size_t size)
{
    if (logged && bytes && size > 0) {
        const auto *const first = static_cast<const std::uint8_t *>(bytes);
        call.data.assign(first, first + size);
    }
    return *this;
}

RecordedCall &RecordedCall::pointerOutput(char **place)
{
    pointer = place;
    return *this;
}

RecordedCall &RecordedCall::recordOutput(void *place, std::size_t size)
{
    record = place;
    recordSize = size;
    return *this;
}

void RecordedCall::setVisitor(const std::function<void()> &visit)
{
    visitor = visit;
}

void RecordedCall::callVisitor()
{
    if (!visitor || std::exchange(isVisiting, true))
        return;
    visitor();
    isVisiting = false;
}

CallLog::Ticket RecordedCall::begin()
{
    return logged ? Library::instance().log.begin(call) : CallLog::Ticket();
}

std::optional<Faults::Fault> RecordedCall::fault() const
{
    return Library::instance().faults.meet(call.function, call.command);
}

/// A failure of vx_GetError itself leaves the one that it was asked for.
std::int32_t RecordedCall::fail(std::int32_t status, const std::string &text) const
{
    if (call.function != "vx_GetError")
        Library::instance().errors.note(call.handle, status, text);
    return status;
}

/// Lies come last, so that one may hide a failure.
std::int32_t RecordedCall::answer(std::int32_t truth) const
{
    const Lies &lies = Library::instance().lies;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        lies.write(call, static_cast<int>(i), numbers[i]);
    lies.write(call, pointer);
    lies.write(call, record, recordSize);
    return lies.result(call).value_or(truth);
}

} // namespace kelvosim
