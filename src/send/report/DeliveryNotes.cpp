#include "send/report/DeliveryNotes.h"

#include <utility>

#include "platform/net/mime/MailAddress.h"
#include "send/direct/DirectDelivery.h"
#include "send/message/MessageAssembly.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr std::size_t Piece = 500;  ///< rows that are read at once

/// Whom the message goes to: bare addresses, each once.
std::vector<std::string> RecipientsOf(const MessageRecord& record) {
    std::vector<std::string> recipients;
    std::set<std::string> seen;
    for (const std::string& list : {NarrowRecipient(record.To), record.CC, record.BCC})
        for (std::string& address : AddressesOf(list))
            if (seen.insert(address).second) recipients.push_back(std::move(address));
    return recipients;
}

}  // namespace

DeliveryNotes::DeliveryNotes(DateTime began) {
    run_.began = began;
}

void DeliveryNotes::AddSent(const std::vector<std::string>& addresses) {
    for (const DomainGroup& group : GroupByDomain(addresses))
        domains_[group.domain].sent += static_cast<std::int64_t>(group.addresses.size());
}

void DeliveryNotes::AddRefused(const std::string& address, const std::string& answer) {
    ++domains_[GroupByDomain({address}).front().domain].refused;
    if (run_.refused.size() < DeliveryRun::MostRefused)
        run_.refused.push_back({ReportText(address), ReportText(answer)});
}

void DeliveryNotes::NotePart(const std::vector<std::string>& addresses) {
    part_.insert(addresses.begin(), addresses.end());
}

void DeliveryNotes::NoteMessage(const MessageRecord& record, const std::set<std::string>& hadBefore,
                                const std::vector<RefusedRecipient>& refusals,
                                const std::string& error) {
    std::map<std::string, std::string> answers;
    for (const RefusedRecipient& refusal : refusals)
        answers[refusal.address] = refusal.answer;
    const std::set<std::string> part = std::exchange(part_, {});
    const std::vector<std::string> recipients = RecipientsOf(record);
    std::vector<std::string> sent;
    for (const std::string& address : recipients) {
        if (hadBefore.contains(address)) continue;
        if (const auto answer = answers.find(address); answer != answers.end())
            AddRefused(address, answer->second);
        else if (error.empty() || part.contains(address))
            sent.push_back(address);
        else
            AddRefused(address, error);
    }
    AddSent(sent);
    if (recipients.empty() && !error.empty()) AddRefused(record.To, error);
}

/// Failures are passed over: a store that cannot be read tells the run itself.
void DeliveryNotes::NoteAccepted(Database& store, const AcceptedMessages& accepted,
                                 std::set<std::int32_t>& counted) {
    // Most often they lie together, at the begin of a long Outbox.
    const auto rows =
        store.OpenRecordset("SELECT [ID], [To], [CC], [BCC] FROM [" + std::string(OutboxFolder) +
                            "] WHERE ID >= " + std::to_string(accepted.begin()->first) +
                            " AND ID <= " + std::to_string(accepted.rbegin()->first));
    if (rows.Failed()) return;
    const auto count = static_cast<std::size_t>((*rows)->RecordCount());
    for (std::size_t first = 0; first < count; first += Piece) {
        const auto piece = (*rows)->ReadRows(first, Piece);
        if (piece.Failed()) return;
        for (const std::vector<DaoValue>& row : *piece) {
            const auto id = static_cast<std::int32_t>(row[0].NumberOr(0));
            if (!accepted.contains(id) || !counted.insert(id).second) continue;
            MessageRecord record;
            record.To = row[1].TextOrEmpty();
            record.CC = row[2].TextOrEmpty();
            record.BCC = row[3].TextOrEmpty();
            AddSent(RecipientsOf(record));
        }
    }
}

DeliveryRun DeliveryNotes::Take(std::int64_t left) {
    run_.left = left;
    for (auto& [domain, outcome] : domains_) {
        outcome.domain = ReportText(domain);
        run_.domains.push_back(std::move(outcome));
    }
    return std::move(run_);
}

}  // namespace mailvane
