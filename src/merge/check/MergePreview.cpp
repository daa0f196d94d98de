#include "merge/check/MergePreview.h"

#include "core/text/Text.h"
#include "send/message/MessageAssembly.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

bool MessageHolds(const frmSettings& settings, const MessageRecord& message,
                  const std::string& text) {
    for (const std::string* part :
         {&message.To, &message.BCC, &message.From, &message.Subject, &message.Attach})
        if (ContainsText(*part, text)) return true;
    return ContainsText(BodyText(settings, message), text);
}

}  // namespace

MergePreview::MergePreview(Workbench& wb, MergePlan plan)
    : wb_(wb),
      plan_(std::move(plan)),
      packet_(plan_.options.packetSize, plan_.records),
      count_(static_cast<std::size_t>(plan_.MessageCount())) {}

DaoResult<MessageRecord> MergePreview::Message(std::size_t number) {
    if (number >= count_) return MakeDaoError(dao_error::NoCurrentRecord);
    MergeGenerator generator(wb_, plan_, MissingTagFile::Leave);
    const DaoError failed =
        Personal() ? BuildPersonal(generator, number) : BuildBulk(generator, number);
    if (failed.Failed()) return failed;
    MessageRecord message = generator.Message();
    FinishForSending(wb_, message);
    return message;
}

/// A row without an address gets the one of the message before it, which is built first.
DaoError MergePreview::BuildPersonal(MergeGenerator& generator, std::size_t number) {
    const DaoResult<std::size_t> addressed = RowOfAddress(number);
    if (addressed.Failed()) return addressed.Error();
    if (*addressed != number) {
        if (DaoError failed = MoveTo(*addressed); failed.Failed()) return failed;
        generator.BuildMessage().Ignore();
    }
    if (DaoError failed = MoveTo(number); failed.Failed()) return failed;
    return generator.BuildMessage();
}

/// The row itself, or the nearest before it that has an address; the first when none has.
DaoResult<std::size_t> MergePreview::RowOfAddress(std::size_t row) {
    const auto found = FindRowOfAddress(row);
    if (found.Ok()) {
        addressed_ = *found;
        addressedTo_ = row;
    }
    return found;
}

DaoResult<std::size_t> MergePreview::FindRowOfAddress(std::size_t row) const {
    for (; row > 0; --row) {
        if (row > addressed_ && row <= addressedTo_) return addressed_;
        if (DaoError failed = MoveTo(row); failed.Failed()) return failed;
        const auto address = plan_.recipients->Get(plan_.message.addressColumn);
        if (address.Failed() && address.Error().number != dao_error::NoCurrentRecord) break;
        if (address.Ok() && address->ToText().Ok()) break;
    }
    return row;
}

DaoError MergePreview::BuildBulk(MergeGenerator& generator, std::size_t number) {
    if (packets_ > number + 1) {
        packet_ = BulkPacket(plan_.options.packetSize, plan_.records);
        packets_ = packetRows_ = 0;
    }
    for (; packets_ <= number; ++packetRows_) {
        if (DaoError failed = MoveTo(packetRows_); failed.Failed()) return failed;
        if (packet_.Next()) ++packets_;
        // A row beyond the last record adds nothing.
        const auto address = plan_.recipients->Get(plan_.options.addressColumn);
        if (address.Ok()) packet_.Append(address->TextOrEmpty());
        if (address.Failed() && address.Error().number != dao_error::NoCurrentRecord)
            return address.Error();
    }
    generator.PacketText = packet_.Text();
    return generator.BuildMessage();
}

DaoResult<std::optional<std::size_t>> MergePreview::Find(
    const std::string& text, std::size_t from, const std::function<bool(std::size_t)>& goOn) {
    const auto& settings = wb_.forms.Get<frmSettings>();
    for (std::size_t looked = 0; looked < count_; ++looked) {
        const std::size_t number = (from + looked) % count_;
        const DaoResult<MessageRecord> message = Message(number);
        if (message.Failed()) return message.Error();
        if (MessageHolds(settings, *message, text)) return std::optional(number);
        if (!goOn(looked + 1)) break;
    }
    return std::optional<std::size_t>();
}

}  // namespace mailvane
