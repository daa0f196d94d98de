#include "database/exchange/frmDataWizard.h"

#include <algorithm>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/project/Project.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/exchange/TableFile.h"
#include "database/view/frmViewDatabase.h"
#include "platform/os/Files.h"
#include "platform/tables/text/FormatGuess.h"

namespace mailvane {

namespace {

constexpr const char* DatabaseExtension = ".db";
constexpr std::size_t PreviewRows = 50;
constexpr const char* LeftOut = "(left out)";

struct SignChoice {
    char sign;
    const char* name;
};
constexpr SignChoice DelimiterChoices[] = {
    {',', "Comma ,"}, {';', "Semicolon ;"}, {'\t', "Tab"}, {'|', "Bar |"}};
constexpr SignChoice QuoteChoices[] = {
    {'"', "Quotation marks \""}, {'\'', "Apostrophes '"}, {'\0', "None"}};

template <std::size_t Count>
int IndexOfSign(const SignChoice (&choices)[Count], char sign) {
    for (std::size_t i = 0; i < Count; ++i)
        if (choices[i].sign == sign) return static_cast<int>(i);
    return 0;
}

template <std::size_t Count>
char SignAt(const SignChoice (&choices)[Count], int index) {
    return choices[static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(Count) - 1))]
        .sign;
}

}  // namespace

frmDataWizard::frmDataWizard(Workbench& wb) : WorkbenchForm(wb, "frmDataWizard", "Import") {
    FillChoices();
    ShowMode();
    txtFile.onChange = [this] { ReadFile(); };
    lstTables.onClick = [this] { TablesChosen(); };
    for (ComboBox* box : {&cmbDelimiter, &cmbQuote, &cmbCharset})
        box->onClick = [this] { TakeFormat(); };
    chkHeader.onClick = [this] {
        if (!filling_) ShowPreview();
    };
    for (OptionButton* option : {&optNewTable, &optExistingTable})
        option->onClick = [this] { ShowColumns(); };
    cmbTable.onClick = [this] {
        if (filling_) return;
        optExistingTable.SetValue(true);
        ShowColumns();
    };
    lstColumns.onClick = [this] { ShowMatches(); };
    cmbColumn.onClick = [this] { ChangeMatch(); };
    cmbColumn.onChange = [this] { ChangeMatch(); };
}

void frmDataWizard::OnUnload() {
    source_ = nullptr;
    if (target_) target_->Close();
}

void frmDataWizard::FillChoices() {
    for (const SignChoice& choice : DelimiterChoices)
        cmbDelimiter.AddItem(choice.name);
    for (const SignChoice& choice : QuoteChoices)
        cmbQuote.AddItem(choice.name);
    for (const CharacterSetName& set : CharacterSetNames)
        cmbCharset.AddItem(set.name);
    ShowFormat();
}

void frmDataWizard::Start(DataWizardMode mode, const std::string& database) {
    mode_ = mode;
    database_ = database;
    lblDatabase.SetText(database);
    OpenDatabase();
    ShowMode();
    if (IsExport()) OpenSource();
    ShowStates();
}

void frmDataWizard::OpenDatabase() {
    if (mode_ == DataWizardMode::NewDatabase) return;
    // What cannot be opened is told when it is needed.
    target_ = wb_.state.MainWorkspace->OpenDatabase(database_).ValueOr(nullptr);
    filling_ = true;
    if (target_) FillWithUserTables(*target_, cmbTable);
    if (cmbTable.Count() > 0 && !cmbTable.SetText(CurrentDatabaseTable(wb_)))
        cmbTable.SetListIndex(0);
    filling_ = false;
}

void frmDataWizard::ShowMode() {
    static constexpr const char* Captions[] = {"New database", "Import", "Export"};
    SetCaption(Captions[static_cast<int>(mode_)]);
    const std::string steps = IsExport() ? " of 2: " : " of 3: ";
    pnlFile.SetText("Step 1" + steps + (IsExport() ? "Table and file" : "File to import"));
    pnlFormat.SetText("Step 2" + steps + (IsExport() ? "Form of the file" : "How to read it"));
    pnlTable.SetText("Step 3" + steps + "Table and columns");
    chkHeader.SetCaption(IsExport() ? "The names of the co&lumns come first"
                                    : "The first row holds the names of the co&lumns");
    chkSelected.SetVisible(false);
    pnlTable.SetVisible(!IsExport());
    std::vector<WizardPage> pages{{&pnlFile, &txtFile}, {&pnlFormat, &cmbDelimiter}};
    if (!IsExport()) pages.push_back({&pnlTable, &txtTable});
    pages_.emplace(std::move(pages), cmdBack, cmdNext);
    pages_->mayLeave = [this](int page) { return page != 0 || CheckSource(); };
}

void frmDataWizard::Browse() {
    const std::string file = IsExport() ? BrowseFile(wb_, true, "Delimited text", ".csv")
                                        : BrowseFile(wb_, false, "", "");
    if (!file.empty()) txtFile.SetText(file);
}

// --- What follows from what -------------------------------------------------------------------

void frmDataWizard::ReadFile() {
    if (running_) return;
    if (IsExport()) return ShowStates();
    const std::string file = Trim(txtFile.Text());
    if (FileExists(file) && KindOfTableFile(file) == TableFileKind::Delimited)
        format_ = GuessFormat(file);
    ShowFormat();
    OpenSource();
}

void frmDataWizard::TakeFormat() {
    if (filling_ || running_) return;
    format_.delimiter = SignAt(DelimiterChoices, cmbDelimiter.ListIndex());
    format_.quote = SignAt(QuoteChoices, cmbQuote.ListIndex());
    const auto set = static_cast<std::size_t>(std::max(cmbCharset.ListIndex(), 0));
    format_.set = CharacterSetNames[set].set;
    if (!IsExport()) OpenSource();
}

void frmDataWizard::ShowFormat() {
    filling_ = true;
    cmbDelimiter.SetListIndex(IndexOfSign(DelimiterChoices, format_.delimiter));
    cmbQuote.SetListIndex(IndexOfSign(QuoteChoices, format_.quote));
    for (std::size_t i = 0; i < CharacterSetNames.size(); ++i)
        if (CharacterSetNames[i].set == format_.set) cmbCharset.SetListIndex(static_cast<int>(i));
    filling_ = false;
}

void frmDataWizard::OpenSource() {
    const BusyPointer busy(wb_);
    const std::string file = IsExport() ? database_ : Trim(txtFile.Text());
    source_ = nullptr;
    sourceError_.clear();
    if (FileExists(file)) source_ = OpenTableFile(file, format_, sourceError_);
    ChooseTables();
}

/// A database is most likely wanted as a whole, of a workbook the first sheet that has rows.
void frmDataWizard::ChooseTables() {
    filling_ = true;
    lstTables.SetItems(source_ ? source_->Tables() : std::vector<std::string>());
    const std::string current = CurrentDatabaseTable(wb_);
    for (int i = 0; i < lstTables.Count(); ++i) {
        std::string error;
        const bool wanted =
            IsExport() ? EqualText(source_->Tables()[static_cast<std::size_t>(i)], current)
                       : source_->NamesColumns() ||
                             source_->Open(static_cast<std::size_t>(i), false, error) != nullptr;
        if (!wanted) continue;
        lstTables.SetSelected(i, true);
        if (!source_->NamesColumns()) break;
    }
    if (lstTables.Count() > 0 && lstTables.SelectedItems().empty()) lstTables.SetSelected(0, true);
    filling_ = false;
    TablesChosen();
}

std::vector<std::size_t> frmDataWizard::ChosenTables() const {
    std::vector<std::size_t> tables;
    for (const int index : lstTables.SelectedItems())
        tables.push_back(static_cast<std::size_t>(index));
    return tables;
}

void frmDataWizard::TablesChosen() {
    if (filling_ || running_) return;
    const std::vector<std::size_t> tables = ChosenTables();
    filling_ = true;
    if (source_ && tables.size() == 1 && !source_->NamesColumns())
        chkHeader.SetChecked(FirstRowIsHeader(*source_, tables.front()));
    filling_ = false;
    ShowPreview();
    GuessTable();
}

/// The first rows as they are read now.
void frmDataWizard::ShowPreview() {
    const std::vector<std::size_t> tables = ChosenTables();
    std::string error;
    const auto rows = source_ && !tables.empty()
                          ? source_->Open(tables.front(), chkHeader.Checked(), error)
                          : nullptr;
    columns_ = rows && tables.size() == 1 ? rows->Columns() : std::vector<SourceColumn>();
    std::vector<GridColumn> heads;
    auto table = std::make_shared<GridTable>();
    if (rows) {
        std::vector<Cell> cells;
        for (const std::string& name : NewColumnNames(rows->Columns()))
            heads.push_back(
                {.name = name, .caption = name, .position = static_cast<int>(heads.size())});
        while (table->rows.size() < PreviewRows && rows->Next(cells)) {
            auto& texts = table->rows.emplace_back();
            for (const Cell& cell : cells)
                texts.emplace_back(cell.kind == ValueKind::Bytes ? "..." : cell.text);
            texts.resize(heads.size());
        }
    }
    Grid1.SetRows(nullptr);
    Grid1.SetColumns(std::move(heads));
    Grid1.SetRows(std::move(table));
    ShowColumns();
}

/// The name that the user has given stays.
void frmDataWizard::GuessTable() {
    const std::vector<std::size_t> tables = ChosenTables();
    if (!source_ || tables.empty() || IsExport()) return;
    if (!txtTable.Text().empty() && txtTable.Text() != guessedTable_) return;
    guessedTable_ = NewTableName(NewColumnNames({{source_->Tables().at(tables.front())}}).front(),
                                 cmbTable.Items());
    txtTable.SetText(guessedTable_);
}

void frmDataWizard::ShowColumns() {
    if (filling_ || running_) return;
    matches_ = NewColumnNames(columns_);
    std::vector<std::string> choices{LeftOut};
    if (optExistingTable.IsSet() && target_) {
        const auto table = target_->GetTableDef(cmbTable.Text());
        if (table.Ok()) {
            matches_ = MatchColumns(columns_, *table);
            for (const Field& field : table->fields)
                choices.push_back(field.name);
        }
    }
    filling_ = true;
    cmbColumn.SetItems(std::move(choices));
    lstColumns.Clear();
    for (std::size_t i = 0; i < matches_.size(); ++i)
        lstColumns.AddItem("");
    filling_ = false;
    lstColumns.SetListIndex(lstColumns.Count() > 0 ? 0 : -1);
    ShowMatches();
    ShowStates();
}

/// Each column with the one that it goes to; the box shows the chosen one's.
void frmDataWizard::ShowMatches() {
    if (filling_) return;
    filling_ = true;
    ShowNewTables();
    const std::vector<std::string> names = NewColumnNames(columns_);
    for (std::size_t i = 0; i < matches_.size(); ++i)
        lstColumns.SetItem(static_cast<int>(i),
                           names[i] + "  >  " + (matches_[i].empty() ? LeftOut : matches_[i]));
    const int chosen = matches_.empty() ? -1 : lstColumns.ListIndex();
    const std::string match = chosen < 0 ? "" : matches_[static_cast<std::size_t>(chosen)];
    cmbColumn.SetText(chosen >= 0 && match.empty() ? LeftOut : match);
    filling_ = false;
}

/// Several tables go to new tables, with all of their columns.
void frmDataWizard::ShowNewTables() {
    const std::vector<std::size_t> tables = ChosenTables();
    if (tables.size() < 2) return;
    lstColumns.Clear();
    for (const auto& import : ImportsIntoNewTables(*source_, tables, cmbTable.Items()))
        lstColumns.AddItem(source_->Tables()[import.source] + "  >  " + import.table);
}

void frmDataWizard::ChangeMatch() {
    const int chosen = lstColumns.ListIndex();
    if (filling_ || running_ || chosen < 0 || matches_.empty()) return;
    const std::string text = Trim(cmbColumn.Text());
    matches_[static_cast<std::size_t>(chosen)] = text == LeftOut ? "" : text;
    ShowMatches();
}

void frmDataWizard::ShowStates() {
    const std::string file = Trim(txtFile.Text());
    const bool text = IsExport() ? !IsSpreadsheetName(file)
                                 : !source_ || KindOfTableFile(file) == TableFileKind::Delimited;
    cmbDelimiter.SetEnabled(text);
    cmbQuote.SetEnabled(text);
    cmbCharset.SetEnabled(text && !IsExport());
    chkHeader.SetEnabled(IsExport() || !source_ || !source_->NamesColumns());
    const std::vector<std::size_t> tables = ChosenTables();
    const bool oneTable = tables.size() <= 1;
    const bool mayExist = oneTable && cmbTable.Count() > 0;
    if (!mayExist) optNewTable.SetValue(true);
    optExistingTable.SetEnabled(mayExist);
    cmbTable.SetEnabled(mayExist);
    txtTable.SetEnabled(oneTable && optNewTable.IsSet());
    lstColumns.SetEnabled(oneTable);
    cmbColumn.SetEnabled(oneTable && !matches_.empty());
    const auto* view = wb_.forms.Find<frmViewDatabase>();
    const bool shown = IsExport() && view && source_ && !tables.empty() &&
                       EqualText(source_->Tables()[tables.front()], view->Data1.CurrentTable());
    const std::size_t selected = shown ? view->Grid1.SelBookmarks().Count() : 0;
    if (selected == 0) chkSelected.SetChecked(false);
    chkSelected.SetVisible(selected > 0);
    chkSelected.SetCaption("&Only the selected rows (" + std::to_string(selected) + ")");
}

void StartDataWizard(Workbench& wb, DataWizardMode mode) {
    std::string database = wb.forms.Get<frmSettings>().txtAccessDBPath.Text();
    if (mode == DataWizardMode::NewDatabase) {
        database = BrowseFile(wb, true, "Databases", DatabaseExtension);
        if (database.empty()) return;
        if (FileExists(database)) {
            Tell(wb, "The file '" + database + "' already exists. Please choose another name.",
                 BoxIcon::Exclamation);
            return;
        }
    } else if (database.empty()) {
        Tell(wb, "Please create new database or open existing database first.");
        return;
    }
    auto& wizard = wb.forms.Get<frmDataWizard>();
    wizard.Start(mode, database);
    ShowModalDialog(wb, wizard);
}

}  // namespace mailvane
