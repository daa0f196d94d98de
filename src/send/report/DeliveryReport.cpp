#include "send/report/DeliveryReport.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <tuple>

#include "platform/net/mime/TextCoding.h"
#include "platform/os/Files.h"
#include "platform/tables/text/DelimitedReader.h"
#include "platform/tables/text/DelimitedWriter.h"

namespace mailvane {

namespace {

using Record = std::vector<std::string>;

constexpr std::size_t MostRuns = 20;

// The columns. A line of a run is followed by those of its domains and refused addresses.
enum Column : std::size_t { Began, Run, Entry, Name, Sent, Refused, Generated, Left, Answer };
const std::vector<std::string> ColumnNames = {"Began",   "Run",       "Entry", "Name",  "Sent",
                                              "Refused", "Generated", "Left",  "Answer"};
constexpr const char* KindNames[] = {"merge", "send"};
constexpr const char* RunEntry = "run";
constexpr const char* DomainEntry = "domain";
constexpr const char* RefusedEntry = "refused";

std::string KindName(DeliveryRun::Kind kind) {
    return KindNames[static_cast<std::size_t>(kind)];
}

std::optional<std::int64_t> Count(const std::string& text) {
    std::int64_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failed] = std::from_chars(text.data(), end, count);
    const bool whole = failed == std::errc() && stop == end && count >= 0;
    return whole ? std::optional(count) : std::nullopt;
}

/// Puts the lines of a report together to runs.
class RunsReader {
public:
    void Take(const Record& line) {
        if (line.size() != ColumnNames.size()) return;
        if (line[Entry] == RunEntry) return TakeRun(line);
        // Lines whose run's own line is damaged belong to none.
        if (runs.empty() || line[Began] != runs.back().began.Iso() ||
            line[Run] != KindName(runs.back().kind))
            return;
        if (line[Entry] == DomainEntry) TakeDomain(line);
        if (line[Entry] == RefusedEntry && runs.back().refused.size() < DeliveryRun::MostRefused)
            runs.back().refused.push_back({line[Name], line[Answer]});
    }

    std::vector<DeliveryRun> runs;

private:
    void TakeRun(const Record& line) {
        const std::optional<DateTime> began = DateTime::Parse(line[Began]);
        const std::optional<std::int64_t> generated = Count(line[Generated]);
        const std::optional<std::int64_t> left = Count(line[Left]);
        const auto kind = std::find(std::begin(KindNames), std::end(KindNames), line[Run]);
        if (!began || !generated || !left || kind == std::end(KindNames)) return;
        if (runs.size() == MostRuns) runs.erase(runs.begin());
        DeliveryRun& run = runs.emplace_back();
        run.began = *began;
        run.kind = static_cast<DeliveryRun::Kind>(kind - std::begin(KindNames));
        run.table = line[Name];
        run.generated = *generated;
        run.left = *left;
    }

    void TakeDomain(const Record& line) {
        const std::optional<std::int64_t> sent = Count(line[Sent]);
        const std::optional<std::int64_t> refused = Count(line[Refused]);
        // One more than the largest: the sum of the others.
        if (sent && refused && runs.back().domains.size() <= DeliveryRun::MostDomains)
            runs.back().domains.push_back({line[Name], *sent, *refused});
    }
};

/// Writes one line after another; what has failed is told at the end.
class RunsWriter {
public:
    explicit RunsWriter(const std::string& path) : writer_(path, {}) {
        writer_.WriteColumns(ColumnNames);
    }

    void Write(const DeliveryRun& run) {
        Record line(ColumnNames.size());
        line[Began] = run.began.Iso();
        line[Run] = KindName(run.kind);
        Record head = line;
        head[Entry] = RunEntry;
        head[Name] = run.table;
        head[Generated] = std::to_string(run.generated);
        head[Left] = std::to_string(run.left);
        WriteLine(head);
        for (const DomainOutcome& domain : run.domains) {
            line[Entry] = DomainEntry;
            line[Name] = domain.domain;
            line[Sent] = std::to_string(domain.sent);
            line[Refused] = std::to_string(domain.refused);
            WriteLine(line);
        }
        line[Sent] = line[Refused] = "";
        for (const RefusedRecipient& refused : run.refused) {
            line[Entry] = RefusedEntry;
            line[Name] = refused.address;
            line[Answer] = refused.answer;
            WriteLine(line);
        }
    }

    std::string Finish() { return writer_.Finish() ? std::string() : writer_.Error(); }

private:
    void WriteLine(const Record& line) {
        std::vector<Cell> cells;
        for (const std::string& text : line)
            cells.push_back({text.empty() ? ValueKind::Null : ValueKind::Text, text});
        writer_.WriteRow(cells);
    }

    DelimitedWriter writer_;
};

}  // namespace

std::vector<DomainOutcome> LargestDomains(std::vector<DomainOutcome> domains, std::size_t most) {
    const auto place = [](const DomainOutcome& domain) {
        return std::tuple(domain.domain == OtherDomains, -domain.Total(),
                          std::string_view(domain.domain));
    };
    std::sort(domains.begin(), domains.end(),
              [&](const DomainOutcome& a, const DomainOutcome& b) { return place(a) < place(b); });
    DomainOutcome others{OtherDomains};
    for (; domains.size() > most; domains.pop_back()) {
        others.sent += domains.back().sent;
        others.refused += domains.back().refused;
    }
    if (others.Total() > 0) domains.push_back(others);
    return domains;
}

std::int64_t DeliveryRun::Sent() const {
    std::int64_t count = 0;
    for (const DomainOutcome& domain : domains)
        count += domain.sent;
    return count;
}

std::int64_t DeliveryRun::Refused() const {
    std::int64_t count = 0;
    for (const DomainOutcome& domain : domains)
        count += domain.refused;
    return count;
}

std::string ReportText(const std::string& text, std::size_t longest) {
    std::string fit = ToUtf8(text);
    std::size_t length = std::min(fit.size(), longest);
    while (length < fit.size() && length > 0 && Utf8CharacterLength(fit, length) == 0)
        --length;
    fit.resize(length);
    std::replace_if(
        fit.begin(), fit.end(),
        [](char sign) {
            const auto code = static_cast<unsigned char>(sign);
            const bool harmless = sign == '\t' || sign == '\r' || sign == '\n';
            return (code < ' ' && !harmless) || code == 0x7F;
        },
        ' ');
    return fit;
}

std::string DeliveryReportPath(const Workbench& wb, const std::string& projectFolder) {
    return (projectFolder.empty() ? wb.platform.programFolder : projectFolder) + "/delivery.txt";
}

std::vector<DeliveryRun> ReadDeliveryRuns(const std::string& path, std::string& error) {
    error.clear();
    if (FileSize(path) < 0) return {};
    DelimitedReader reader(path, {});
    error = reader.Error();
    RunsReader report;
    std::vector<Cell> cells;
    // A quotation mark that is never closed ends the reading; what stands before it counts.
    while (reader.Next(cells)) {
        if (!reader.IsValid()) continue;
        Record line;
        for (const Cell& cell : cells)
            line.emplace_back(cell.text);
        report.Take(line);
    }
    return std::move(report.runs);
}

std::string AddDeliveryRun(const std::string& path, DeliveryRun run) {
    std::string error;
    std::vector<DeliveryRun> runs = ReadDeliveryRuns(path, error);
    if (!error.empty()) return error;
    run.domains = LargestDomains(std::move(run.domains), DeliveryRun::MostDomains);
    if (runs.size() == MostRuns) runs.erase(runs.begin());
    runs.push_back(std::move(run));
    RunsWriter writer(path);
    for (const DeliveryRun& each : runs)
        writer.Write(each);
    return writer.Finish();
}

}  // namespace mailvane
