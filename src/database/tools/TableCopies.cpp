#include "database/tools/TableCopies.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/run/LongRun.h"
#include "core/text/Text.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

constexpr int UnexpectedNull = 3162;

DaoError CopyTable(frmViewDatabase& view, const std::string& name) {
    const std::string table = "[" + view.Data1.CurrentTable() + "]";
    if (!view.Data1.Database()) return MakeDaoError(dao_error::ObjectInvalid);
    const auto copied = view.Data1.Database()->Execute("SELECT " + table + ".* INTO [" + name +
                                                       "] FROM " + table + ";");
    return copied.Failed() ? copied.Error() : DaoError();
}

}  // namespace

void TellInvalidTable(Workbench& wb) {
    Tell(wb, "Invalid table name. Please choose another name.");
}

std::string AskCopyName(Workbench& wb, frmViewDatabase& view, const std::string& title,
                        const std::string& name) {
    const std::string answer =
        wb.platform.windows.InputBox({"Table name:", title, name}).value_or("");
    if (answer.empty()) return {};
    if (EqualText(answer, view.Data1.CurrentTable())) {
        TellInvalidTable(wb);
        return {};
    }
    if (!IsValidTableName(answer)) {
        Tell(wb, InvalidNameText("Table", answer), BoxIcon::None, "Invalid name");
        return {};
    }
    return answer;
}

StatementHandler CopyErrors(Workbench& wb) {
    return {{dao_error::ItemNotFound, UnexpectedNull, dao_error::DataConversion},
            [&wb](const DaoError& error) {
                return AskYesNo(wb, error.description + "\r\nDo you want to proceed anyway?",
                                BoxIcon::Exclamation);
            }};
}

void MakeTableCopy(Workbench& wb, frmViewDatabase& view, const std::string& title,
                   const std::string& name) {
    const std::string copy = AskCopyName(wb, view, title, name);
    if (copy.empty()) return;
    StatementHandler handler = CopyErrors(wb);
    DaoError outcome;
    {
        const BusyPointer busy(wb);
        const LongRun run(wb, {"Copying a table", Holds::Recipients});
        if (!run.Began()) return;
        outcome = CopyTable(view, copy);
    }
    if (!handler.GoOn(outcome)) return;
    if (outcome.Ok()) Tell(wb, "Successfully created the '" + copy + "' table.");
    view.cmdRefresh.Press();
}

}  // namespace mailvane
