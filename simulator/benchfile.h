// SPDX-License-Identifier: MIT
// The bench file: plain text that says which simulated cameras there are and what state they are in.
#pragma once

#include "kelvosim.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace benchfile {

/// One section of a bench file. The two counters have no meaning of their own: what counts is that they grow.
struct Camera
{
    kelvosim::CameraSpec spec; ///< the replay folder as written, which may be relative to the file
    std::uint32_t failedFrames = 0;
    std::uint32_t listResets = 0;
};

/// What is wrong with a bench file; what() begins with the number of the line, lines counting from 1.
class Error : public std::runtime_error
{
public:
    Error(int line, const std::string &text);
    int line() const { return number; }

private:
    int number = 0;
};

/// The cameras of a bench file in their order.
/// @throws Error at the first line that it does not understand
std::vector<Camera> parse(const std::string &text);

/// The same text with one value replaced, or with a line "key = value" more at the end of the camera's
/// section. All else stays byte for byte: comments, blank lines, order, alignment and line ends.
/// @throws std::invalid_argument when no section has this serial number
std::string setValue(const std::string &text, const std::string &serial, const std::string &key,
                     const std::string &value);

} // namespace benchfile
