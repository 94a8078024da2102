#include "x11/selection/x11_pasteboard.h"

#include "base/log.h"

#include <chrono>
#include <future>
#include <utility>
#include <vector>

namespace quorlo {

namespace {

// The pasteboard's thread answers within a few round trips; only a server that hangs takes longer.
constexpr std::chrono::milliseconds kAnswerBudget{1000};
constexpr std::chrono::milliseconds kHandOverBudget{1500};
constexpr auto kAnnouncementBudget = SelectionServer::kTurnPatience + kAnswerBudget;

}  // namespace

// What this program has set. Providers run here, on the main thread, each at most once.
class X11Pasteboard::OwnContents {
 public:
  OwnContents(const PasteboardContents& contents, const PropertyForms& forms) {
    auto targets = offeredTargets(contents, forms);
    std::vector<SelectionOffer::Data> data;
    for (const auto& item : contents.items) {
      itemTypes_.push_back(item.types());
      for (const auto& representation : item.representations()) {
        const auto* bytes = std::get_if<PasteboardData>(&representation.data);
        data.push_back(bytes != nullptr ? std::make_shared<const PasteboardData>(*bytes) : nullptr);
        providers_.push_back(bytes != nullptr ? nullptr
                                              : std::get<PasteboardItem::Provider>(representation.data));
      }
    }
    data_ = data;
    offer_ = std::make_shared<SelectionOffer>(std::move(targets), std::move(data));
  }

  const SelectionServer::Offer& offer() const { return offer_; }
  std::size_t size() const { return data_.size(); }
  bool isKnown(std::size_t representation) const { return data_[representation] != nullptr; }

  const SelectionOffer::Data& data(std::size_t representation) {
    auto& data = data_[representation];
    if (!data)
      data = std::make_shared<const PasteboardData>(std::exchange(providers_[representation], nullptr)());
    return data;
  }

  std::vector<PasteboardItem> copy(bool mayRunProviders) {
    std::vector<PasteboardItem> items;
    std::size_t representation = 0;
    for (const auto& types : itemTypes_) {
      auto& item = items.emplace_back();
      for (const auto& type : types) {
        if (mayRunProviders || isKnown(representation)) item.setData(type, *data(representation));
        ++representation;
      }
    }
    return items;
  }

 private:
  SelectionServer::Offer offer_;
  std::vector<std::vector<PasteboardType>> itemTypes_;
  std::vector<SelectionOffer::Data> data_;
  std::vector<PasteboardItem::Provider> providers_;
};

Result<std::unique_ptr<X11Pasteboard>> X11Pasteboard::connect(const std::string& display, MainQueue& queue,
                                                              Options options) {
  auto x = XConnection::open(display);
  if (!x) return x.error();
  return std::unique_ptr<X11Pasteboard>(new X11Pasteboard(std::move(x).value(), queue, std::move(options)));
}

X11Pasteboard::X11Pasteboard(std::unique_ptr<XConnection> x, MainQueue& queue, Options options)
    : x_(std::move(x)),
      queue_(queue),
      options_(std::move(options)),
      loop_(*x_, "pasteboard"),
      server_(
          *x_, loop_, options_.readBudget,
          [this](const auto& offer, std::size_t representation, const std::function<void()>& done) {
            runProvider(offer, representation, done);
          },
          [this](xcb_window_t target) {
            if (options_.pieceWasIgnored) options_.pieceWasIgnored(target);
          }) {
  // From here on no change of the clipboard goes unnoticed.
  x_->sync();
  loop_.start([this](const xcb_generic_event_t& event) { server_.handleEvent(event); },
              [lost = options_.connectionLost] {
                if (lost) lost();
              });
}

X11Pasteboard::~X11Pasteboard() {
  if (!x_->lost()) {
    const auto done = std::make_shared<std::promise<void>>();
    loop_.post([this, done] {
      providersAreGone_ = true;
      server_.handOver([done] { done->set_value(); });
    });
    done->get_future().wait_for(kHandOverBudget);
  }
  loop_.stop();
}

void X11Pasteboard::setContents(PasteboardContents contents) {
  const auto offer = adopt(contents);
  const auto set = [this, offer] { server_.setClipboard(offer); };
  if (!loop_.postAndWait(set, kAnswerBudget)) warnOfLateServer();
}

bool X11Pasteboard::setContentsIfUnchanged(PasteboardContents contents, std::int64_t changeCount) {
  const auto foreignChanges = server_.foreignChanges();
  if (changeCount != ownChanges_ + foreignChanges) return false;
  const auto former = own_;
  const auto offer = adopt(contents);
  const auto isSet = std::make_shared<bool>(false);
  const auto set = [this, offer, foreignChanges, isSet] {
    *isSet = server_.setClipboardIfUnchanged(offer, foreignChanges);
  };
  if (!loop_.postAndWait(set, kAnswerBudget)) {
    warnOfLateServer();
  } else if (!*isSet) {
    own_ = former;
    --ownChanges_;
    return false;
  }
  return true;
}

// Makes the contents those that were set last.
SelectionServer::Offer X11Pasteboard::adopt(const PasteboardContents& contents) {
  // A target that still has to read the earlier contents gets them, but their providers may go now.
  if (server_.tracker().hasOpenPaste()) provideAll();
  own_ = std::make_shared<OwnContents>(contents, forms_);
  ++ownChanges_;
  return own_->offer();
}

void X11Pasteboard::warnOfLateServer() const {
  if (x_->lost()) return;
  logWarning("WARNING: #x11pB1; The X server has not taken the new clipboard contents within 1 s.");
}

void X11Pasteboard::read(Reading reading) {
  const bool savesPrimary = options_.pastesFromPrimary && options_.pastesFromPrimary();
  const auto onMainThread = [this, alive = std::weak_ptr<char>(alive_)](std::function<void()> task) {
    queue_.run([alive, task = std::move(task)] {
      if (!alive.expired()) task();
    });
  };
  const auto changeCount = std::make_shared<std::int64_t>(ownChanges_);
  const auto mayBeReplaced = [this, onMainThread, changeCount,
                              step = std::move(reading.contentsMayBeReplaced)] {
    *changeCount += server_.foreignChanges();
    if (step) onMainThread(step);
  };
  const auto completed = [this, onMainThread, changeCount, own = own_, step = std::move(reading.completed)](
                             const std::shared_ptr<SelectionCopy>& foreign) {
    onMainThread([this, changeCount, own, step, foreign] {
      auto copy = foreign ? copyOf(*foreign) : copyOf(own);
      copy.changeCount = *changeCount;
      step(std::move(copy));
    });
  };
  loop_.post([this, savesPrimary, mayBeReplaced, completed] {
    if (savesPrimary) server_.savePrimary();
    if (server_.clipboardOffer()) {
      mayBeReplaced();
      return completed(nullptr);
    }
    server_.readClipboard({mayBeReplaced, [completed](SelectionCopy foreign) {
                             completed(std::make_shared<SelectionCopy>(std::move(foreign)));
                           }});
  });
}

PasteboardCopy X11Pasteboard::copyOf(SelectionCopy& foreign) {
  for (const auto& [type, form] : foreign.forms) forms_[type] = form;
  return {std::move(foreign.items), std::move(foreign.losses)};
}

PasteboardCopy X11Pasteboard::copyOf(const std::shared_ptr<OwnContents>& own) {
  if (!own) return {};
  return {own->copy(own == own_), {}};
}

std::int64_t X11Pasteboard::changeCount() const {
  return ownChanges_ + server_.foreignChanges();
}

void X11Pasteboard::pasteWillBePosted(const PasteTarget& target, PasteSelection selection) {
  const auto done = std::make_shared<std::promise<void>>();
  loop_.post([this, target, selection, done] {
    server_.announcePaste(target, selection, [done] { done->set_value(); });
  });
  done->get_future().wait_for(kAnnouncementBudget);
}

// On the pasteboard's thread.
void X11Pasteboard::runProvider(const SelectionServer::Offer& offer, std::size_t representation,
                                std::function<void()> done) {
  if (providersAreGone_) return done();
  queue_.run([this, alive = std::weak_ptr<char>(alive_), offer, representation, done = std::move(done)] {
    if (alive.expired()) return;
    // Contents that were replaced meanwhile have no provider any more: the reader is refused.
    const auto data = own_ && own_->offer() == offer ? own_->data(representation) : nullptr;
    loop_.post([offer, representation, data, done] {
      if (data) offer->setData(representation, data);
      done();
    });
  });
}

void X11Pasteboard::provideAll() {
  if (!own_) return;
  for (std::size_t i = 0; i < own_->size(); ++i) {
    if (own_->isKnown(i)) continue;
    loop_.post([offer = own_->offer(), i, data = own_->data(i)] { offer->setData(i, data); });
  }
}

}  // namespace quorlo
