#include "x11/desktop/x11_workspace.h"

#include "x11/connection/client_identity.h"
#include "x11/desktop/open_url.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace quorlo {

namespace {

// A reader waits no longer than this for the latest state, even if the server hangs.
constexpr std::chrono::milliseconds kRefreshPatience{20};
constexpr std::chrono::milliseconds kFirstStatePatience{2000};

std::vector<std::uint32_t> cardinals(const XConnection& x, xcb_window_t window, xcb_atom_t name) {
  const auto property = x.property(window, name);
  return property ? property->cardinals() : std::vector<std::uint32_t>();
}

}  // namespace

Result<std::unique_ptr<X11Workspace>> X11Workspace::connect(Options options) {
  auto x = XConnection::open(options.display);
  if (!x) return x.error();
  return std::unique_ptr<X11Workspace>(new X11Workspace(std::move(x).value(), std::move(options)));
}

X11Workspace::X11Workspace(std::unique_ptr<XConnection> x, Options options)
    : options_(std::move(options)),
      x_(std::move(x)),
      loop_(*x_, "workspace"),
      refreshTask_([this] { refresh(); }),
      grabs_(*x_),
      desktopFiles_(options_.applicationDirectories),
      activeWindowAtom_(x_->atom("_NET_ACTIVE_WINDOW")),
      clientListAtom_(x_->atom("_NET_CLIENT_LIST")),
      windowManagerAtom_(x_->atom("_NET_SUPPORTING_WM_CHECK")) {
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | KeyboardGrabWatch::kRootEvents;
  xcb_change_window_attributes(x_->get(), x_->root(), XCB_CW_EVENT_MASK, &mask);
  loop_.start([this](const xcb_generic_event_t& event) { handleEvent(event); },
              [lost = options_.connectionLost] {
                if (lost) lost();
              },
              [this] {
                grabs_.settle(active_);
                ++changes_;
              });
  loop_.postAndWait(
      [this] {
        findWindowManager();
        refresh();
        grabs_.begin();
        grabs_.settle(active_);
      },
      kFirstStatePatience);
}

X11Workspace::~X11Workspace() {
  loop_.stop();
}

const RunningApplications& X11Workspace::runningApplications() const {
  shown_ = latest();
  return shown_->applications;
}

ActiveWindow X11Workspace::activeWindow() const {
  return latest()->active;
}

std::vector<InstalledApplication> X11Workspace::installedApplications() const {
  DesktopFiles files(options_.applicationDirectories);  // not desktopFiles_, which is the thread's
  std::vector<InstalledApplication> installed;
  for (const auto& file : files.all()) {
    if (file.isApplication) installed.push_back({file.identifier, file.name, file.icon});
  }
  return installed;
}

xcb_window_t X11Workspace::lastForeignWindow() const {
  return latest()->lastForeign;
}

bool X11Workspace::openURL(std::string_view url) {
  if (const auto found = served_.find(url); found != served_.end()) {
    found->second();
    return true;
  }
  return openInDesktop(url);
}

Subscription X11Workspace::serveAddress(const std::string& address, std::function<void()> open) {
  served_[address] = std::move(open);
  return Subscription([this, address] { served_.erase(address); });
}

Subscription X11Workspace::observeActiveWindow(std::function<void()> changed) {
  return activeWindowObservers_.add(std::move(changed));
}

std::shared_ptr<const X11Workspace::Snapshot> X11Workspace::latest() const {
  loop_.catchUp(kRefreshPatience);
  if (!windowManagerTells_) loop_.postAndWait(refreshTask_, kRefreshPatience);
  const std::lock_guard lock(mutex_);
  return snapshot_;
}

void X11Workspace::handleEvent(const xcb_generic_event_t& event) {
  grabs_.handleEvent(event);
  if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY) return;
  const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  if (notify.atom != activeWindowAtom_ && notify.atom != clientListAtom_ && notify.atom != windowManagerAtom_)
    return;
  // One that is starting announces itself bit by bit.
  if (notify.atom == windowManagerAtom_ || !windowManagerTells_) findWindowManager();
  refresh();
}

// A window manager that died has left its properties behind: the one that lives has a window that names
// itself.
void X11Workspace::findWindowManager() {
  const auto check = cardinals(*x_, x_->root(), windowManagerAtom_);
  bool tells = false;
  if (!check.empty() && cardinals(*x_, check.front(), windowManagerAtom_) == check) {
    const auto supported = cardinals(*x_, x_->root(), x_->atom("_NET_SUPPORTED"));
    tells = std::ranges::find(supported, activeWindowAtom_) != supported.end();
  }
  windowManagerTells_ = tells;
}

void X11Workspace::refresh() {
  const auto before =
      std::exchange(active_, windowManagerTells_ ? askActiveWindow() : focusedApplicationWindow());
  windows_ = cardinals(*x_, x_->root(), clientListAtom_);
  if (active_ != XCB_WINDOW_NONE && std::ranges::find(windows_, active_) == windows_.end()) {
    windows_.push_back(active_);
  }
  std::erase_if(
      facts_, [&](const auto& entry) { return std::ranges::find(windows_, entry.first) == windows_.end(); });
  for (const auto window : windows_) {
    // Some programs name themselves only after their window is there: the active one is asked again.
    // So is one without a name: it may have been gone already, left over as the active one, and its
    // number be given to a window that opened since.
    const bool becameActive = window == active_ && active_ != before;
    if (becameActive || facts_[window].windowClass.empty()) facts_[window] = factsOf(window);
  }
  publish();
  if (active_ == before) return;
  activeWindowObservers_.notify();
}

void X11Workspace::publish() {
  auto snapshot = std::make_shared<Snapshot>();
  std::map<std::pair<std::int64_t, std::string>, RunningApplication*> byIdentity;
  for (const auto window : windows_) {
    const auto& facts = facts_.at(window);
    auto& application = byIdentity[{facts.processIdentifier, facts.bundleIdentifier}];
    if (application == nullptr) {
      auto added = std::make_shared<RunningApplication>();
      added->processIdentifier = facts.processIdentifier;
      added->localizedName = facts.name;
      if (!facts.bundleIdentifier.empty()) added->bundleIdentifier = facts.bundleIdentifier;
      application = added.get();
      snapshot->applications.push_back(std::move(added));
    }
    if (window == active_) {
      application->isActive = true;
      snapshot->active = {window, facts.processIdentifier, facts.bundleIdentifier, facts.windowClass,
                          facts.isOwn};
      if (!facts.isOwn) lastForeign_ = window;
    }
  }
  snapshot->lastForeign = lastForeign_;
  const std::lock_guard lock(mutex_);
  snapshot_ = std::move(snapshot);
}

xcb_window_t X11Workspace::askActiveWindow() const {
  const auto window = cardinals(*x_, x_->root(), activeWindowAtom_);
  return window.empty() ? xcb_window_t{XCB_WINDOW_NONE} : window.front();
}

// The focus may be on a window inside the application's, or follow the pointer.
xcb_window_t X11Workspace::focusedApplicationWindow() const {
  const auto focus = x_->reply(xcb_get_input_focus_reply, xcb_get_input_focus(x_->get()));
  if (!focus) return XCB_WINDOW_NONE;
  xcb_window_t window = focus->focus;
  if (window == XCB_INPUT_FOCUS_POINTER_ROOT || window == x_->root()) {
    const auto pointer = x_->reply(xcb_query_pointer_reply, xcb_query_pointer(x_->get(), x_->root()));
    window = pointer ? pointer->child : xcb_window_t{XCB_WINDOW_NONE};
  }
  while (window != XCB_WINDOW_NONE && window != x_->root()) {
    if (x_->property(window, XCB_ATOM_WM_CLASS)) return window;
    const auto tree = x_->reply(xcb_query_tree_reply, xcb_query_tree(x_->get(), window));
    window = tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
  }
  return XCB_WINDOW_NONE;
}

X11Workspace::Facts X11Workspace::factsOf(xcb_window_t window) {
  Facts facts;
  // What the server knows holds for programs in a sandbox too, which see process numbers of their own.
  const auto pid = cardinals(*x_, window, x_->atom("_NET_WM_PID"));
  const auto stated = pid.empty() ? 0 : std::int64_t{pid.front()};
  const auto known = clientOfWindow(*x_, window).processIdentifier;
  facts.processIdentifier = known != 0 ? known : stated;
  facts.isOwn = known == getpid() || stated == getpid();

  // Two strings, each closed by a zero: the instance and the class.
  std::string instance;
  if (const auto names = x_->property(window, XCB_ATOM_WM_CLASS)) {
    const std::string text = names->text();
    const auto end = std::min(text.find('\0'), text.size());
    instance = text.substr(0, end);
    if (end < text.size()) facts.windowClass = text.substr(end + 1, text.find('\0', end + 1) - end - 1);
  }
  const auto applicationId = x_->property(window, x_->atom("_GTK_APPLICATION_ID"));

  facts.name = facts.windowClass;
  facts.bundleIdentifier = facts.windowClass;
  const DesktopFile* file = nullptr;
  if (applicationId && !applicationId->bytes.empty()) {
    facts.bundleIdentifier = applicationId->text();
    file = desktopFiles_.withIdentifier(facts.bundleIdentifier);
  } else if (!facts.windowClass.empty()) {
    file = desktopFiles_.ofWindow(instance, facts.windowClass);
    if (file != nullptr) facts.bundleIdentifier = file->identifier;
  }
  if (file != nullptr && !file->name.empty()) facts.name = file->name;
  if (facts.isOwn) facts.bundleIdentifier = options_.ownBundleIdentifier;
  return facts;
}

}  // namespace quorlo
