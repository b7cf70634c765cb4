#pragma once

class QDialogButtonBox;
class QLabel;
class QPushButton;
class QWidget;

/// What sheets have in common.
namespace SheetStyle {
/// Gives a sheet's title line its weight and size.
void makeTitle(QLabel *label);
/// Has labels stand on the side that the sheet's layout gives them: by itself a label goes by the script of
/// its text.
void mirrorLabels(const QWidget *sheet);
/// Lets the Tab key reach the buttons in the order in which the platform shows them.
void setTabOrderAsShown(const QDialogButtonBox *buttons);
/// Makes a button that stands by itself as large as those of the button box, to which `other` belongs.
void makeRoomy(QPushButton *button, const QPushButton *other);
} // namespace SheetStyle
