#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>
#include <memory>
#include <string>

#include "platform/forms/FormRegistry.h"
#include "platform/qt/QtWindows.h"

namespace mailvane {

/// Real windows on Qt's offscreen platform, with the designs of this folder.
class QtTest : public testing::Test {
protected:
    QtTest() { QDir::addSearchPath("forms", MAILVANE_SOURCE_DIR "/tests/platform/qt"); }

    template <class F>
    F& Load() {
        return static_cast<F&>(
            forms.LoadAs(typeid(F), [this] { return std::make_unique<F>(windows); }));
    }

    template <class Widget>
    Widget& Find(Form& form, const char* name) {
        auto* widget = windows.WindowOf(form)->findChild<Widget*>(QString::fromUtf8(name));
        EXPECT_NE(widget, nullptr) << name;
        return *widget;
    }

    void Pump() {
        for (int round = 0; round < 5; ++round)
            windows.PumpEvents();
    }

    static void Key(QWidget& widget, int key, const QString& text = {},
                    Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(&widget, &press);
        QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
        QApplication::sendEvent(&widget, &release);
    }

    static void Type(QWidget& widget, const QString& text) {
        for (const QChar c : text)
            Key(widget, 0, QString(c));
    }

    static void Click(QWidget& widget, QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, at, widget.mapToGlobal(at), button,
                              type == QEvent::MouseButtonPress ? button : Qt::NoButton,
                              Qt::NoModifier);
            QApplication::sendEvent(&widget, &event);
        }
    }

    int argumentCount = 1;
    char program[5] = "test";
    char* arguments[2] = {program, nullptr};
    SystemClock clock;
    QtWindows windows{argumentCount, arguments, clock};
    FormRegistry forms{windows};
};

}  // namespace mailvane
