#include "AboutBox.h"

#include "AlertSheet.h"
#include "WheelGeometry.h"

#include <QCoreApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

QPixmap wheelPicture(qreal side, qreal pixelRatio)
{
    QPixmap picture((QSizeF(side, side) * pixelRatio).toSize());
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(WheelGeometry::fittedInto(QRectF(0, 0, side, side)), /*combine=*/true);
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
    auto *box = new AlertSheet(window);
    box->setObjectName(u"aboutBox"_s);
    box->setPicture(wheelPicture(/*side=*/72, box->devicePixelRatioF()));
    box->setTexts(
        QStringLiteral("Tarvex Cloud " TARVEX_BUNDLE_VERSION),
        tr("Set goals on a wheel of eight life areas, and compare one set of goals with another. Your "
           "goals are kept by the service you sign in to; the client itself keeps nothing."),
        tr("Close"), /*alternateButton=*/QString());
    box->setWindowTitle(tr("About Tarvex Cloud"));
    QObject::connect(box, &AlertSheet::ended, box, &QObject::deleteLater);
    box->beginOn(window);
}
