#include "frame/KeyedToolBar.h"

#include <QApplication>
#include <QIcon>

namespace KeyedToolBar {

QVector<QAction*> AddButtons(QToolBar& Bar, std::initializer_list<ToolBarButtonSpec> Buttons,
                             const QString& Prefix, std::function<void(const QString&)> OnClick) {
    QVector<QAction*> Places;
    for (const ToolBarButtonSpec& B : Buttons) {
        if (B.Key == nullptr) {
            Places << Bar.addSeparator();
            continue;
        }
        const QString Key = QString::fromLatin1(B.Key);
        const QIcon Icon = QIcon::fromTheme(QString::fromLatin1(B.Icon),
                                            QApplication::style()->standardIcon(B.Fallback));
        QAction* Action = Bar.addAction(Icon, Key);
        Action->setObjectName(Prefix + Key);
        Action->setData(Key);
        Action->setToolTip(QString::fromLatin1(B.ToolTip));
        QObject::connect(Action, &QAction::triggered, &Bar, [OnClick, Key] { OnClick(Key); });
        Places << Action;
    }
    return Places;
}

QAction* Find(const QVector<QAction*>& Places, const QString& Key) {
    for (QAction* Action : Places) {
        if (Action->data().toString() == Key) {
            return Action;
        }
    }
    return nullptr;
}

}  // namespace KeyedToolBar
