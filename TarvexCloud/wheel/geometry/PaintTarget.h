#pragma once

class QBackingStore;
class QPainter;

/// Whether the painter draws into that window's backing store, which is the screen. Given none, it does not.
///
/// On the screen, in a grab and in a print of a widget alike, the widget is the painter's device; only the
/// engine tells them apart. A graphics effect on the widget would make the answer no.
bool drawsOnScreen(const QPainter &painter, QBackingStore *screen);
