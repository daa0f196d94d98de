#include <gmock/gmock.h>

#include <QFile>
#include <QTemporaryDir>

#include "platform/qt/QtTest.h"
#include "platform/qt/check/FormCheck.h"
#include "platform/qt/frmEvery.h"

namespace mailvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class frmSmall final : public Form {
public:
    explicit frmSmall(WindowSystem& windows) : Form(windows, "frmSmall", "Small") {}
    TextBox txtName{*this, "txtName"};
    Button cmdOk{*this, "cmdOk"};
    Button cmdHidden{*this, "cmdHidden", Button::HiddenButton};
};

const QString Label =
    "<widget class=\"QLabel\" name=\"captionName\"><property name=\"text\"><string>&amp;Name"
    "</string></property><property name=\"buddy\"><cstring>txtName</cstring></property></widget>";
const QString Name = "<widget class=\"QLineEdit\" name=\"txtName\"/>";
const QString Ok =
    "<widget class=\"QPushButton\" name=\"cmdOk\"><property name=\"text\"><string>&amp;Ok"
    "</string></property></widget>";
const QString Stops = "<tabstop>txtName</tabstop><tabstop>cmdOk</tabstop>";

TEST_F(QtTest, FormCheckFindsNothingInASoundForm) {
    EXPECT_THAT(CheckForm(Load<frmEvery>()), IsEmpty());
}

TEST_F(QtTest, FormCheckFindsEachFault) {
    struct Case {
        const char* name;
        QString items;
        QString stops;
        std::string complaint;
    };
    const QString box =
        "<widget class=\"QCheckBox\" name=\"chkMore\"><property name=\"text\">"
        "<string>&amp;New</string></property></widget>";
    const Case cases[] = {
        {"no widget", Label + Name, "<tabstop>txtName</tabstop>", "cmdOk has no widget"},
        {"wrong kind", Label + Name + QString(Ok).replace("QPushButton", "QCheckBox"), Stops,
         "cmdOk has a widget of the wrong kind, QCheckBox"},
        {"not a control", Label + Name + Ok + "<widget class=\"QSlider\" name=\"Slider9\"/>",
         Stops + "<tabstop>Slider9</tabstop>", "Slider9 is no control"},
        {"hidden button with a widget",
         Label + Name + Ok + "<widget class=\"QLabel\" name=\"cmdHidden\"/>", Stops,
         "cmdHidden has a widget and needs none"},
        {"no label", Name + Ok, Stops, "txtName has no label"},
        {"button without a name", Label + Name + "<widget class=\"QPushButton\" name=\"cmdOk\"/>",
         Stops, "cmdOk has no name for screen readers"},
        {"mnemonic twice", Label + Name + QString(Ok).replace("&amp;Ok", "&amp;Next"), Stops,
         "cmdOk has the mnemonic Alt+N of captionName"},
        {"not in the tab order", Label + Name + Ok, "<tabstop>cmdOk</tabstop>",
         "txtName is not in the tab order"},
        {"twice in the tab order", Label + Name + Ok, Stops + "<tabstop>cmdOk</tabstop>",
         "cmdOk is in the tab order more than once"},
        {"unknown in the tab order", Label + Name + Ok, Stops + "<tabstop>cmdGone</tabstop>",
         "cmdGone is in the tab order and no widget"},
    };
    const QTemporaryDir folder;
    QDir::addSearchPath("forms", folder.path());
    auto& form = Load<frmSmall>();
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        QString items;
        for (const QString& widget : QString(one.items).split("<widget", Qt::SkipEmptyParts))
            items += "<item><widget" + widget + "</item>";
        QFile file(folder.filePath("frmSmall.ui"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(("<ui version=\"4.0\"><class>frmSmall</class><widget class=\"QWidget\" "
                    "name=\"frmSmall\"><layout class=\"QVBoxLayout\" name=\"all\">" +
                    items + "</layout></widget><tabstops>" + one.stops + "</tabstops></ui>")
                       .toUtf8());
        file.close();
        EXPECT_THAT(CheckForm(form), ElementsAre("frmSmall: " + one.complaint));
    }
}

}  // namespace
}  // namespace mailvane
