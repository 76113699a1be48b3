// SPDX-License-Identifier: MIT
// The frame round every call of the library: log, faults, failures.
#pragma once

#include "failure.h"
#include "library.h"

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

    /// @return what `body` returns, or the status of the fault or failure
    template<class Body>
    std::int32_t run(Body body)
    {
        const CallLog::Ticket ticket = begin();
        const std::int32_t result = guarded(body);
        Library::instance().log.end(ticket, result);
        return result;
    }

private:
    CallLog::Ticket begin();
    std::optional<Faults::Fault> fault() const;
    std::int32_t fail(std::int32_t status, const std::string &text) const;

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
    bool logged; ///< arguments are kept only when somebody may read them
};

} // namespace kelvosim
