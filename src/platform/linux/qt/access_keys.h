// Letters that reach the controls of a dialog with Alt, for those whose texts mark none.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_ACCESS_KEYS_H
#define NVSUPPORT_PLATFORM_LINUX_QT_ACCESS_KEYS_H

#include <QWidget>
#include <vector>

namespace windowing {

// Marks a letter in the text of each button but OK and Cancel, and of each label that names an edit: one that begins
// the text or a word of it, else any, that no other control has. One whose letters are all taken stays without.
void GiveAccessKeys(const std::vector<QWidget*>& controls);

}  // namespace windowing

#endif
