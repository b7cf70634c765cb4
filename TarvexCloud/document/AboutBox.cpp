#include "AboutBox.h"

#include "WheelGeometry.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPainter>

namespace {

QPixmap wheelPicture(qreal side, qreal pixelRatio)
{
    QPixmap picture((QSizeF(side, side) * pixelRatio).toSize());
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(side / 2, side / 2);
    const qreal scale = (side / 2 - 1) / WheelGeometry::sliceRadius;
    painter.scale(scale, -scale); // the wheel's y axis points upward
    QPen lines(Qt::white, 1.5);
    lines.setCosmetic(true);
    painter.setPen(lines);
    for (int index = 0; index < WheelGeometry::sliceCount; ++index) {
        painter.setBrush(WheelGeometry::colors().at(static_cast<std::size_t>(index)));
        painter.drawPath(WheelGeometry::sliceOutline(QPointF(), index));
    }
    return picture;
}

QString tr(const char *text)
{
    return QCoreApplication::translate("AboutBox", text);
}

} // namespace

void showAboutBox(QWidget *window)
{
    auto *box = new QMessageBox(window);
    box->setObjectName(QStringLiteral("aboutBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(tr("About Tarvex Cloud"));
    box->setTextFormat(Qt::PlainText);
    box->setText(QStringLiteral("Tarvex Cloud " TARVEX_BUNDLE_VERSION));
    box->setInformativeText(tr("Set goals on a wheel of eight life areas, and compare one set of goals with "
                               "another. Your goals are kept by the service you sign in to, none of them on "
                               "this computer."));
    box->setIconPixmap(wheelPicture(/*side=*/64, box->devicePixelRatioF()));
    box->addButton(QMessageBox::Close);
    box->open();
}
