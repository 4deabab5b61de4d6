#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <vector>

// Every dialog of the program, opened the way its menu opens it, so that it
// can be looked at as a picture (scripts/render-dialogs.sh) and checked for
// controls its layout cut off (DialogGalleryTest). A dialog that is added to
// the program gets a line here.
struct DialogGalleryEntry {
    QString Name;
    // Opens the dialog in a state a user would meet and returns it, shown.
    std::function<QWidget*()> Open;
    // Closes it again and lets go of whatever Open set up.
    std::function<void()> Close;
};

std::vector<DialogGalleryEntry> DialogGallery();

// Renders the shown dialog as the screen would show it.
QImage RenderDialog(QWidget& Dialog);
