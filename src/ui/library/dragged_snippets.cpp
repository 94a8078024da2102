#include "ui/library/dragged_snippets.h"

#include "base/log.h"
#include "import/export/export_library.h"
#include "store/context/managed_object_context.h"
#include "store/exchange/library_exchange.h"
#include "store/records/item_type_identifiers.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "ui/qt_text.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

using nlohmann::ordered_json;
using Snippets = std::vector<std::shared_ptr<QLSnippet>>;

const QString kPlainText = QStringLiteral("text/plain");

QString typeName(std::string_view type) {
  return QString::fromUtf8(type.data(), static_cast<qsizetype>(type.size()));
}

// One as an object, several as a list, each of which a library document may be.
QByteArray formsOf(const Snippets& snippets) {
  ordered_json form = ordered_json::array();
  for (const auto& each : snippets) form.push_back(toJson(exchangeForm(*each)));
  const auto& whole = snippets.size() == 1 ? form.front() : form;
  return QByteArray::fromStdString(whole.dump(-1, ' ', false, ordered_json::error_handler_t::replace));
}

QByteArray document(const ManagedObjectContext& context, const std::string& folder) {
  const auto text = exportText(context, OneFolder{folder}, ExportFormat::json);
  if (text) return QByteArray::fromStdString(text.value());
  logWarning("WARNING: #dRgF0ld - " + text.error().message);
  return {};
}

// A picture leaves nothing behind.
QString textsOf(const Snippets& snippets) {
  QStringList texts;
  for (const auto& each : snippets) {
    texts << toQString(each->attributedStringWithoutAttachments().string());
  }
  return texts.join(u'\n');
}

Snippets liveSnippets(const QLCategory& folder) {
  Snippets found;
  for (auto* each : folder.snippets()) {
    if (!each->deletionDate()) found.push_back(std::static_pointer_cast<QLSnippet>(each->shared_from_this()));
  }
  return found;
}

}  // namespace

DraggedSnippets::DraggedSnippets(std::vector<std::shared_ptr<QLSnippet>> snippets)
    : snippets_(std::move(snippets)),
      type_(typeName(kSnippetTypeIdentifier)),
      exchangeForm_([this] { return formsOf(snippets_); }),
      plainText_([this] { return textsOf(snippets_); }) {}

DraggedSnippets::DraggedSnippets(const ManagedObjectContext& context, const QLCategory& folder)
    : type_(typeName(kFolderTypeIdentifier)),
      exchangeForm_([&context, uuid = folder.uuid()] { return document(context, uuid); }),
      plainText_([snippets = liveSnippets(folder)] { return textsOf(snippets); }) {}

QStringList DraggedSnippets::formats() const {
  return {type_, kPlainText};
}

QVariant DraggedSnippets::retrieveData(const QString& type, QMetaType preferred) const {
  if (type == type_) return exchangeForm_();
  if (type == kPlainText) return plainText_();
  return QMimeData::retrieveData(type, preferred);
}

}  // namespace quorlo
