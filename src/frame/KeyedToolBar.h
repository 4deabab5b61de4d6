#pragma once

#include <QAction>
#include <QString>
#include <QStyle>
#include <QToolBar>
#include <QVector>
#include <functional>
#include <initializer_list>

// A tool bar whose buttons are told apart by a key and counted by place, as
// both main windows address theirs.
struct ToolBarButtonSpec {
    // None: a separator.
    const char* Key;
    const char* ToolTip;
    // The freedesktop icon name, with Qt's own icon where the theme has none.
    const char* Icon;
    QStyle::StandardPixmap Fallback;
};

namespace KeyedToolBar {

// Adds the buttons in order; each click hands its key to OnClick. Returns
// every place, separators included; a button's object name is Prefix and its key.
QVector<QAction*> AddButtons(QToolBar& Bar, std::initializer_list<ToolBarButtonSpec> Buttons,
                             const QString& Prefix, std::function<void(const QString&)> OnClick);
// The button with the key, or none.
QAction* Find(const QVector<QAction*>& Places, const QString& Key);

}  // namespace KeyedToolBar
