// SPDX-License-Identifier: MIT
// The frame round every call of the library: log, faults, failures.
#pragma once

#include "failure.h"
#include "library.h"

#include <functional>
#include <type_traits>
#include <utility>

namespace kelvosim {

/// Describes a call and runs it. Nothing here swallows the unwinding of a cancelled thread.
class RecordedCall
{
public:
    explicit RecordedCall(const char *function, std::uint32_t handle = 0, std::int64_t command = AnyCommand);

    /// Whether descriptions are kept at all; what costs effort is described only then.
    bool isLogged() const { return logged; }

    RecordedCall &number(double value);
    RecordedCall &text(const std::string &text);

    /// Bytes that the program passes in; a null pointer passes none.
    RecordedCall &data(const void *bytes, std::size_t size);

    // Where the call writes its answers, in the order of the arguments; null pointers are no outputs.
    template<class... Number>
    RecordedCall &outputs(Number *...places)
    {
        (numbers.push_back(places), ...);
        return *this;
    }
    RecordedCall &pointerOutput(char **place);
    RecordedCall &recordOutput(void *place, std::size_t size);

    /// @return what `body` returns, or the status of the fault or failure, unless the library is to lie
    template<class Body>
    std::int32_t run(Body body)
    {
        const CallLog::Ticket ticket = begin();
        callVisitor();
        const std::int32_t truth = guarded(body);
        callVisitor();
        const std::int32_t result = answer(truth);
        Library::instance().log.end(ticket, result);
        return result;
    }

    /// Who runs inside of the calls of the calling thread; an empty one for nobody.
    static void setVisitor(const std::function<void()> &visit);

private:
    static void callVisitor();
    CallLog::Ticket begin();
    std::optional<Faults::Fault> fault() const;
    std::int32_t fail(std::int32_t status, const std::string &text) const;
    std::int32_t answer(std::int32_t truth) const;

    template<class Body>
    std::int32_t guarded(Body &body)
    {
        try {
            if (const auto met = fault())
                return fail(met->status, met->text);
            Library::instance().start();
            return result(body);
        } catch (const Failure &failure) {
            return fail(failure.status(), failure.what());
        } catch (const std::exception &) {
            return fail(OutOfMemory, "There is not enough memory.");
        }
    }

    template<class Body>
    static std::int32_t result(Body &body)
    {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            return Success;
        } else {
            return body();
        }
    }

    Call call;
    std::vector<NumberOutput> numbers;
    char **pointer = nullptr;
    void *record = nullptr;
    std::size_t recordSize = 0;
    bool logged; ///< arguments are kept only when somebody may read them
};

} // namespace kelvosim
