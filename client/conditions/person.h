#pragma once

#include <QtCore/qnamespace.h>

class QAbstractButton;
class QString;
class QWidget;

/// What a person does with the controls of a window. All throw Exception where a person could not do it.
namespace client::person {

/// Moves the keyboard focus into a control that is seen and enabled.
void enter(QWidget *control);
/// Moves the focus on to the next control of the form.
void leave(QWidget *control);
/// Replaces the text of a line, a memo or a drop-down list by typing.
void type(QWidget *control, const QString &text);
/// Takes an item of a drop-down list, or nothing of it (-1); or clicks a choice of a radio group.
void choose(QWidget *control, int index);
void press(QAbstractButton *button);
/// Presses and releases a key; a command of the window that has the key as shortcut runs instead, unless the control wants it.
void pressKey(QWidget *control, QKeyCombination key);

} // namespace client::person
