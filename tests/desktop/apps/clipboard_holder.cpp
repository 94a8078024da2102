// test-clipboard-holder own CONTENT...   owns the clipboard until it is killed; prints what it offers
// test-clipboard-holder show             prints what the clipboard holds
//
// CONTENT: text:STRING, html:STRING, picture (a PNG file's bytes), image (an image in all formats that Qt can
// write, encoded when asked for), photo:WIDTHxHEIGHT (the same for one that takes long to encode, as
// photographs do), data:TYPE:BYTES (so many bytes of a fixed sequence under a MIME type). A line for each
// type: TYPE SIZE SHA-256, sorted by type; "pixels SHA-256" where there is an image; then "." on a line of
// its own.
#include <QBuffer>
#include <QClipboard>
#include <QCryptographicHash>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QTextStream>
#include <QTimer>

#include <random>

namespace {

QImage picture() {
  QImage image(320, 200, QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgba(x % 256, y, (x * y) % 256, 255));
  }
  return image;
}

// Shades with noise.
QImage photo(const QSize& size) {
  QImage image(size, QImage::Format_RGB32);
  std::mt19937 generator(1);
  for (int y = 0; y < size.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < size.width(); ++x) {
      const auto noise = static_cast<int>(generator() % 16);
      line[x] = qRgb(x % 240 + noise, y % 240 + noise, (x + y) % 240 + noise);
    }
  }
  return image;
}

QByteArray pngBytes() {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  picture().save(&buffer, "PNG");
  return bytes;
}

QByteArray fixedBytes(int count) {
  QByteArray bytes(count, Qt::Uninitialized);
  std::mt19937 generator(1);  // the standard fixes its sequence
  for (auto& byte : bytes) byte = static_cast<char>(generator());
  return bytes;
}

bool add(const QString& content, QMimeData& data) {
  const auto kind = content.section(':', 0, 0);
  const auto value = content.section(':', 1);
  if (kind == "text") {
    data.setText(value);
  } else if (kind == "html") {
    data.setHtml(value);
  } else if (kind == "picture") {
    data.setData("image/png", pngBytes());
  } else if (kind == "image") {
    data.setImageData(picture());
  } else if (kind == "photo") {
    data.setImageData(photo({value.section('x', 0, 0).toInt(), value.section('x', 1).toInt()}));
  } else if (kind == "data") {
    data.setData(value.section(':', 0, 0), fixedBytes(value.section(':', 1).toInt()));
  } else {
    return false;
  }
  return true;
}

void print(const QMimeData& data) {
  QTextStream out(stdout);
  auto formats = data.formats();
  formats.sort();
  for (const auto& format : formats) {
    // Only what is content: no protocol targets, nor what Qt derives from an image.
    if (!format.contains('/') || format == "application/x-qt-image") continue;
    const auto bytes = data.data(format);
    out << format << " " << bytes.size() << " "
        << QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex() << "\n";
  }
  auto image = qvariant_cast<QImage>(data.imageData());
  if (image.isNull()) image = QImage::fromData(data.data("image/png"));
  if (!image.isNull()) {
    image.convertTo(QImage::Format_ARGB32);
    const QByteArrayView pixels(image.constBits(), image.sizeInBytes());
    out << "pixels " << QCryptographicHash::hash(pixels.toByteArray(), QCryptographicHash::Sha256).toHex()
        << "\n";
  }
  out << ".\n";
}

}  // namespace

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  const QStringList words = QCoreApplication::arguments();
  if (words.value(1) == "show") {
    print(*QGuiApplication::clipboard()->mimeData());
    return 0;
  }
  if (words.value(1) != "own") qFatal("usage: test-clipboard-holder own CONTENT... | show");
  auto* data = new QMimeData;  // owned by the clipboard below
  for (const auto& content : words.mid(2)) {
    if (!add(content, *data)) qFatal("Unknown content %s", qPrintable(content));
  }
  QGuiApplication::clipboard()->setMimeData(data);
  QTimer::singleShot(0, [&] { print(*data); });
  return QGuiApplication::exec();
}
