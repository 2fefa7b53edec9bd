#include "app/splash_form.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

namespace torquil {

SplashForm::SplashForm(QWidget* parent)
    : QDialog(parent, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("frmSplash"));
    setFixedSize(440, 240);

    auto* title = new QLabel(QStringLiteral("Torquil"), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 2.6);
    big.setBold(true);
    title->setFont(big);
    auto* line = new QLabel(tr("Car graphics and car data editor for KRB style files"), this);
    auto* version = new QLabel(tr("Version %1").arg(QCoreApplication::applicationVersion()), this);
    for (QLabel* l : {title, line, version}) l->setStyleSheet(QStringLiteral("color: white;"));
    auto* ok = new QPushButton(tr("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setFixedWidth(80);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 28, 28, 20);
    layout->addWidget(title);
    layout->addWidget(line);
    layout->addStretch();
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(version);
    bottom->addStretch();
    bottom->addWidget(ok);
    layout->addLayout(bottom);

    timer_ = new QTimer(this);
    timer_->setSingleShot(true);
    timer_->setInterval(2000);
    connect(timer_, &QTimer::timeout, this, &QDialog::accept);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    timer_->start();

    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
}

void SplashForm::keyPressEvent(QKeyEvent* event) {
    event->accept();
    accept();
}

void SplashForm::paintEvent(QPaintEvent*) {
    QPainter p(this);
    QLinearGradient g(0, 0, width(), height());
    g.setColorAt(0, QColor(28, 52, 92));
    g.setColorAt(1, QColor(150, 40, 40));
    p.fillRect(rect(), g);
    // A road with its centre line across the bottom.
    p.fillRect(QRect(0, height() - 70, width(), 26), QColor(40, 40, 44, 200));
    p.setPen(QPen(QColor(250, 210, 70), 3, Qt::DashLine));
    p.drawLine(0, height() - 57, width(), height() - 57);
}

} // namespace torquil
