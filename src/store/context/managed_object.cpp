#include "store/context/managed_object.h"

#include "store/context/managed_object_context.h"

namespace quorlo {

ManagedObject::~ManagedObject() = default;

Subscription ManagedObject::observeChanges(std::function<void(std::string_view)> callback) {
  if (!observers_) observers_ = std::make_unique<Observers<std::string_view>>();
  return observers_->add(std::move(callback));
}

void ManagedObject::didChange(const Property& property) {
  if (context_ != nullptr) context_->recordDidChange(*this, property);
  announce(property.name);
}

void ManagedObject::announce(std::string_view name) const {
  if (!observers_) return;
  if (context_ != nullptr && context_->takesFromStore()) {
    context_->announceLater(*this, name);
  } else {
    observers_->notify(name);
  }
}

bool ManagedObject::sharesContextWith(const ManagedObject& other) const {
  return context_ != nullptr && context_ == other.context_;
}

}  // namespace quorlo
