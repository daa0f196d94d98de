#include "merge/message/frmSpelling.h"

#include "core/MessageBoxes.h"

namespace mailvane {

namespace {

constexpr const char* Title = "Spelling";

std::string OwnWordsPath(const Workbench& wb) {
    return wb.platform.programFolder + "/words.txt";
}

}  // namespace

frmSpelling::frmSpelling(Workbench& wb) : WorkbenchForm(wb, "frmSpelling", Title) {
    lstSuggestions.onClick = [this] {
        if (lstSuggestions.ListIndex() >= 0) txtChange.SetText(lstSuggestions.Text());
    };
    lstSuggestions.onDoubleClick = [this] {
        if (lstSuggestions.ListIndex() >= 0) Change(false);
    };
}

std::optional<std::string> frmSpelling::Check(RichTextBox& body, SpellChecker& checker) {
    body_ = &body;
    checker_ = &checker;
    finished_ = false;
    run_.emplace(checker, body.Text());
    ShowNext();
    if (!finished_) ShowModalDialog(wb_, *this);
    const std::string text = run_->Text();
    run_.reset();
    if (!finished_ && text == body.Text()) return std::nullopt;
    return text;
}

void frmSpelling::ShowNext() {
    if (!run_) return;
    if (!run_->Next()) {
        finished_ = true;
        Hide();
        return;
    }
    const WordPlace place = run_->Place();
    body_->Select(place.start, place.length);
    lblWord.SetText(run_->Word());
    lstSuggestions.SetItems(checker_->Suggestions(run_->Word()));
    lstSuggestions.SetListIndex(lstSuggestions.Count() > 0 ? 0 : -1);
    if (lstSuggestions.Count() == 0) txtChange.SetText(run_->Word());
    txtChange.Select(0, txtChange.Text().size());
    txtChange.Focus();
}

void frmSpelling::Change(bool all) {
    if (!run_) return;
    if (all)
        run_->ChangeAll(txtChange.Text());
    else
        run_->Change(txtChange.Text());
    ShowNext();
}

void frmSpelling::IgnoreAll() {
    if (!run_) return;
    run_->IgnoreAll();
    ShowNext();
}

void frmSpelling::AddWord() {
    if (!run_) return;
    if (!checker_->AddOwnWord(run_->Word()))
        Tell(wb_, "Your dictionary '" + OwnWordsPath(wb_) + "' could not be written.",
             BoxIcon::Exclamation, Title);
    ShowNext();
}

void CheckSpelling(Workbench& wb, RichTextBox& body) {
    frmSpelling& dialog = wb.forms.Get<frmSpelling>();
    if (dialog.Visible()) return;  // a check is under way
    std::string problem;
    const auto checker = SpellChecker::Open(OwnWordsPath(wb), problem);
    if (!checker) {
        dialog.Unload();
        return Tell(wb, problem, BoxIcon::Exclamation, Title);
    }
    const auto text = dialog.Check(body, *checker);
    dialog.Unload();
    if (!text || !body.Owner().IsLoaded()) return;
    if (*text == body.Text())
        Tell(wb, "The spelling check is complete.", BoxIcon::None, Title);
    else
        body.SetText(*text);
}

}  // namespace mailvane
