#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Stands behind each address of an AddressList.
inline constexpr const char* AddressDelimiter = "\",\"";

/// The known addresses, out of addr.dat in the program folder; "" when there is none. Every form
/// that completes addresses keeps a list of its own and writes it when it closes; the file stays
/// as it was when that fails.
std::string ReadAddressList(const Workbench& wb);
void WriteAddressList(const Workbench& wb, const std::string& addressList);

/// Appends the text to the list unless it is there, in any letter case. True when the list has
/// grown. An empty text is new to any list but an empty one.
bool AppendAddress(std::string& addressList, const std::string& text);

}  // namespace mailvane
