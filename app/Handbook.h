#pragma once

#include <QString>

namespace vellmora {

class ContentWindow;

/// The handbook: a page with pictures, made when the program is built, that the desktop shows.
namespace handbook {

/// The page that belongs to the running program: below it in a build tree, or where it was installed. Found
/// from the program's own place, so that an installation can be moved.
QString installedFile();

/// Has the desktop show the page. An empty text, or a German sentence that says why it cannot be.
QString show(const QString& file);

/// The platform's help key shows the page whenever it is pressed in the window; the status line says where it
/// lies if it cannot be shown.
void showOnHelpKey(ContentWindow& window, const QString& file);

}  // namespace handbook

}  // namespace vellmora
