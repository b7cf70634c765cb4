#include "PaintTarget.h"

#include <QBackingStore>
#include <QPaintEngine>
#include <QPainter>

bool drawsOnScreen(const QPainter &painter, QBackingStore *screen)
{
    const QPaintEngine *engine = painter.paintEngine();
    return engine && screen && engine->paintDevice() == screen->paintDevice();
}
