#include "merge/message/AddressBook.h"

#include "core/Paths.h"
#include "core/records/Sifrant.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

std::string AddressListPath(const Workbench& wb) {
    return wb.platform.programFolder + "/addr.dat";
}

}  // namespace

std::string ReadAddressList(const Workbench& wb) {
    return UnscrambleText(ReadFileText(AddressListPath(wb)));
}

void WriteAddressList(const Workbench& wb, const std::string& addressList) {
    WriteFileText(AddressListPath(wb), ScrambleText(addressList));
}

bool AppendAddress(std::string& addressList, const std::string& text) {
    const std::string mark = AddressDelimiter;
    const bool known = text.empty() ? addressList.empty()
                                    : ContainsText(mark + addressList + mark, mark + text + mark);
    if (!known) addressList += text + mark;
    return !known;
}

}  // namespace mailvane
