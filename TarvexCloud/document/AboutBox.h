#pragma once

class QWidget;

/// Says what the application is and which version, in a sheet on that window, or by itself without one.
void showAboutBox(QWidget *window);
