#include "ui/symbols.h"

#include "base/log.h"

#include <fmt/format.h>

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <utility>

// Outside of the namespace, where the resource compiler puts the function that it calls.
static void initializeResources() {
  Q_INIT_RESOURCE(icons);
}

namespace quorlo {
namespace {

bool paletteIsDark() {
  const auto palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor symbolColor(QIcon::Mode mode) {
  const auto palette = QGuiApplication::palette();
  switch (mode) {
    case QIcon::Selected:
      return palette.color(QPalette::HighlightedText);
    case QIcon::Disabled:
      return palette.color(QPalette::Disabled, QPalette::Text);
    case QIcon::Normal:
    case QIcon::Active:
      break;
  }
  return palette.color(QPalette::Text);
}

QColor statusColor(QIcon::Mode /*mode*/) {
  return paletteIsDark() ? QColor(0x6f, 0xb0, 0xff) : QColor(0x2f, 0x6f, 0xdb);
}

// Draws a picture whose "currentColor" is decided when it is painted.
class TintedEngine : public QIconEngine {
 public:
  using Color = QColor (*)(QIcon::Mode);

  TintedEngine(QString file, Color color) : file_(std::move(file)), color_(color) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const auto ratio = painter->device()->devicePixelRatioF();
    painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return scaledPixmap(size, mode, state, 1);
  }
  // `size` in pixels of the device.
  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/, qreal scale) override {
    const auto color = color_(mode).name(QColor::HexRgb);
    const auto key = QStringLiteral("%1 %2 %3x%4").arg(file_, color).arg(size.width()).arg(size.height());
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
      picture = QPixmap(size);
      picture.fill(Qt::transparent);
      QSvgRenderer renderer(drawing().replace("currentColor", color.toLatin1()));
      renderer.setAspectRatioMode(Qt::KeepAspectRatio);
      QPainter painter(&picture);
      renderer.render(&painter);
      QPixmapCache::insert(key, picture);
    }
    picture.setDevicePixelRatio(scale);
    return picture;
  }
  bool isNull() override { return false; }
  QIconEngine* clone() const override { return new TintedEngine(*this); }

 private:
  QByteArray drawing() const {
    QFile file(file_);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  QString file_;
  Color color_;
};

QIcon tinted(const QString& name, TintedEngine::Color color) {
  initializeResources();
  const auto file = QStringLiteral(":/icons/%1.svg").arg(name);
  if (QFile::exists(file)) return QIcon(new TintedEngine(file, color));
  logError(fmt::format("ERROR: #sy4Gcx - There is no picture named {}.", name.toStdString()));
  return {};
}

}  // namespace

QIcon symbol(QStringView name) {
  if (name.startsWith(u"Statusbar")) return tinted(name.toString(), symbolColor);
  return tinted(QStringLiteral("symbols/%1").arg(name), symbolColor);
}

QIcon programIcon() {
  return tinted(QStringLiteral("org.quorlo.Quorlo"), symbolColor);
}

QIcon statusImage(StatusImage image) {
  const auto isRegular = image == StatusImage::regular;
  return tinted(isRegular ? QStringLiteral("Statusbar_Quorlo") : QStringLiteral("Statusbar_Quorlo_Hollowed"),
                statusColor);
}

}  // namespace quorlo
