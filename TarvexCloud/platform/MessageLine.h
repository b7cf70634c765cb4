#pragma once

#include "WrappedLabel.h"

/// The message line of a sheet: what the service or the client has to say, word for word. It grows to a few
/// lines, then scrolls.
class MessageLine : public WrappedLabel
{
    Q_OBJECT
public:
    explicit MessageLine(QWidget *parent = nullptr);
};
