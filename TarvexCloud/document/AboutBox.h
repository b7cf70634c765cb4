#pragma once

class QWidget;

/// Says what the application is and which version. It closes by itself with its window, which may be null.
void showAboutBox(QWidget *window);
