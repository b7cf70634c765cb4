#include "MessageLine.h"

MessageLine::MessageLine(QWidget *parent) : WrappedLabel(parent)
{
    setLines(/*least=*/1, /*most=*/5);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
}
