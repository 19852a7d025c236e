// Text from devices and networks, made fit for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace qsscan {

// Control characters, that of a terminal's commands among them, become question marks; and so does every byte of text
// that is no UTF-8.
std::string printable(std::string_view text);

// How many columns it takes, a character a column.
std::size_t columnsOf(std::string_view text);

}  // namespace qsscan
