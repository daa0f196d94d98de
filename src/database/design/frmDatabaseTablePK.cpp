#include "database/design/frmDatabaseTablePK.h"

namespace mailvane {

namespace {

constexpr const char* NumberColumn = "ID";

}  // namespace

frmDatabaseTablePK::frmDatabaseTablePK(Workbench& wb)
    : WorkbenchForm(wb, "frmDatabaseTablePK", "Primary key") {
    txtPrimaryKey.SetText(NumberColumn);
    txtPrimaryKey.onChange = txtPrimaryKey.onClick = [this] { Option1.SetValue(true); };
}

void frmDatabaseTablePK::Offer(const std::vector<std::string>& columns) {
    accepted_ = false;
    const std::string chosen = txtPrimaryKey.Text();
    txtPrimaryKey.SetItems(columns);
    txtPrimaryKey.SetText(chosen);

    std::vector<GridColumn> heads;
    for (const std::string& name : columns)
        heads.push_back({name, name, 1500, static_cast<int>(heads.size())});
    if (txtPrimaryKey.IndexOf(NumberColumn) < 0)
        heads.push_back({NumberColumn, NumberColumn, 1500, static_cast<int>(heads.size())});
    auto preview = std::make_shared<GridTable>();
    preview->rows = {std::vector<std::string>(heads.size())};
    Grid1.SetRows(nullptr);
    Grid1.SetColumns(std::move(heads));
    Grid1.SetRows(std::move(preview));
}

std::string frmDatabaseTablePK::PrimaryKey() const {
    return Option1.IsSet() ? txtPrimaryKey.Text() : std::string();
}

void frmDatabaseTablePK::Answer(bool accepted) {
    accepted_ = accepted;
    Hide();
}

}  // namespace mailvane
