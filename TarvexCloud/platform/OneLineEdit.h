#pragma once

#include <QLineEdit>

/// A field whose text is one line as soon as the user changes it, however the change comes: line breaks and
/// tabs, which the toolkit's own field would keep unseen, become a blank each run. A text that was set and
/// left alone stays as it is. Such a change cannot be undone.
class OneLineEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit OneLineEdit(QWidget *parent = nullptr);

private:
    void joinLines();
};
