#include "platform/linux/atspi/TitleBarButtons.h"

#include <algorithm>
#include <deque>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <thread>
#include <unordered_map>
#include <utility>

#include "platform/Lock.h"
#include "platform/linux/atspi/TitleBarLookup.h"

namespace atspi {

namespace {

// All in milliseconds.
/// A window that is being resized by hand changes with every frame; it is asked about when it has come to rest.
constexpr unsigned rest = 60;
/// An application takes in a new state in several steps; this is when it is asked whether the answer still holds.
constexpr unsigned confirmation = 400;
/// A new window may be seen before its application describes it. After this many doublings it has no buttons.
constexpr unsigned absentDelay = 100;
constexpr unsigned absentAttempts = 8;
constexpr unsigned silentDelay = 500;
constexpr unsigned connectDelay = 500;
constexpr unsigned longestDelay = 30'000;
/// How long the end waits for conversations that were called off.
constexpr unsigned farewell = 1000;

/// So many that a few silent ones delay nobody, so few that a desktop full of windows does not wake up all at once.
constexpr std::size_t applicationsAtATime = 4;

unsigned backOff(unsigned first, unsigned attempt) {
  unsigned delay = first;
  while (attempt-- > 0 && delay < longestDelay) delay *= 2;
  return std::min(delay, longestDelay);
}

bool sameSize(CGSize one, CGSize other) { return one.width == other.width && one.height == other.height; }

/// Whether buttons found for `one` are where they were found for `other` too.
bool sameLayout(const Window& one, const Window& other) {
  const auto margin = [](const Window& window) {
    return CGSizeMake(window.frame.origin.x - window.client.origin.x, window.frame.origin.y - window.client.origin.y);
  };
  return one.pid == other.pid && one.maximized == other.maximized && sameSize(one.frame.size, other.frame.size) &&
         sameSize(one.client.size, other.client.size) && sameSize(margin(one), margin(other));
}

using Action = std::function<void()>;

gboolean runOnce(gpointer task) {
  (*static_cast<Action*>(task))();
  return G_SOURCE_REMOVE;
}

void attach(GSource* source, GMainContext* context, Action task) {
  g_source_set_callback(source, runOnce, new Action(std::move(task)),
                        [](gpointer owned) { delete static_cast<Action*>(owned); });
  g_source_attach(source, context);
}

}  // namespace

class TitleBarButtons::Worker {
 public:
  Worker(ChangeHandler changed, Options options)
      : changed_(std::move(changed)),
        options_(std::move(options)),
        context_(g_main_context_new()),
        loop_(g_main_loop_new(context_.get(), FALSE)),
        thread_([this] { run(); }) {}

  ~Worker() {
    post([this] { g_main_loop_quit(loop_.get()); });
    thread_.join();
  }

  void update(const Window& window) {
    bool hadButtons = false;
    {
      const ns::LockGuard guard(lock_);
      const auto [place, isNew] = known_.try_emplace(window.id);
      Known& known = place->second;
      const bool moved = !isNew && sameLayout(known.window, window);
      known.window = window;
      if (moved) return;
      known.revision = ++lastRevision_;
      hadButtons = !known.buttons.empty();
      known.buttons.clear();
    }
    post([this, id = window.id, hadButtons] {
      if (hadButtons) changed_(id);
      const auto [place, isNew] = jobs_.try_emplace(id);
      if (isNew) place->second = std::make_shared<Job>();
      Job& job = *place->second;
      job.attempts = 0;
      job.confirmed = false;
      schedule(id, job, isNew ? 0 : rest);
    });
  }

  void refresh(std::uint32_t id) {
    post([this, id] {
      const auto job = jobs_.find(id);
      if (job == jobs_.end()) return;
      Job& known = *job->second;
      known.attempts = 0;
      if (known.asking)
        known.askAgain = true;
      else
        schedule(id, known, 0);
    });
  }

  void remove(std::uint32_t id) {
    bool hadButtons = false;
    {
      const ns::LockGuard guard(lock_);
      const auto known = known_.find(id);
      if (known == known_.end()) return;
      hadButtons = !known->second.buttons.empty();
      known_.erase(known);
    }
    post([this, id, hadButtons] {
      if (!isKnown(id)) jobs_.erase(id);
      if (hadButtons) changed_(id);
    });
  }

  std::vector<TitleBarButton> buttons(std::uint32_t id) const {
    const ns::LockGuard guard(lock_);
    const auto known = known_.find(id);
    return known == known_.end() ? std::vector<TitleBarButton>{} : known->second.buttons;
  }

 private:
  struct Known {
    Window window;
    /// Changes with everything that makes an answer that is still under way worthless.
    std::uint64_t revision = 0;
    std::vector<TitleBarButton> buttons;
  };
  struct Job {
    Source timer;
    unsigned attempts = 0;
    bool confirmed = false;
    bool asking = false;
    bool askAgain = false;
  };
  /// Bus names start anew with every bus, so what was learnt of them lives no longer than the connection.
  struct Session {
    Object<GDBusConnection> connection;
    TitleBarLookup lookup;
  };
  /// Something that others are asked. It ends in time, whatever they do.
  struct Conversation {
    Object<GCancellable> cancellable{g_cancellable_new()};
    Source deadline;
  };

  // Any thread.

  void post(Action task) {
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    attach(source, context_.get(), std::move(task));
    g_source_unref(source);
  }

  bool isKnown(std::uint32_t id) const {
    const ns::LockGuard guard(lock_);
    return known_.contains(id);
  }

  // The lookup thread.

  void run() {
    g_main_context_push_thread_default(context_.get());
    g_main_loop_run(loop_.get());
    stopping_ = true;
    jobs_.clear();
    reconnect_.reset();
    for (const auto& conversation : conversations_) g_cancellable_cancel(conversation.cancellable.get());
    bool late = false;
    const Source limit = after(farewell, [&late] { late = true; });
    // GIO cannot break off everything: it waits for a bus to greet. What is left then is never taken up again, because
    // nobody runs this context any more.
    while (!conversations_.empty() && !late) g_main_context_iteration(context_.get(), TRUE);
    disconnect();
    g_main_context_pop_thread_default(context_.get());
  }

  Source after(unsigned delay, Action task) {
    Source timer(g_timeout_source_new(delay));
    attach(timer.get(), context_.get(), std::move(task));
    return timer;
  }

  void schedule(std::uint32_t id, Job& job, unsigned delay) {
    job.timer = after(delay, [this, id] {
      const auto found = jobs_.find(id);
      if (found == jobs_.end()) return;
      if (found->second->asking) {
        found->second->askAgain = true;
        return;
      }
      if (std::ranges::find(waiting_, id) == waiting_.end()) waiting_.push_back(id);
      askWaiting();
    });
  }

  /// An application is asked about one window after the other, so that a silent one takes a single place of the few.
  void askWaiting() {
    if (!session_) {
      if (!connecting_ && !reconnect_) connect();
      return;
    }
    for (auto next = waiting_.begin(); next != waiting_.end() && beingAsked_.size() < applicationsAtATime;) {
      const std::uint32_t id = *next;
      const auto job = jobs_.find(id);
      auto asked = known(id);
      const bool gone = job == jobs_.end() || !asked;
      if (!gone && beingAsked_.contains(asked->window.pid)) {
        ++next;
        continue;
      }
      next = waiting_.erase(next);
      if (!gone) ask(id, job->second, std::move(*asked));
    }
  }

  std::list<Conversation>::iterator begin() {
    const auto conversation = conversations_.emplace(conversations_.end());
    conversation->deadline = after(options_.conversationTimeout, [cancellable = conversation->cancellable.get()] {
      g_cancellable_cancel(cancellable);
    });
    return conversation;
  }

  /// Takes the job by value: it may be removed while the application thinks.
  Detached ask(std::uint32_t id, std::shared_ptr<Job> job, Known asked) {
    const auto session = session_;
    const auto conversation = begin();
    beingAsked_.insert(asked.window.pid);
    job->asking = true;
    std::optional<std::vector<TitleBarButton>> found;
    try {
      const AccessibilityBus bus(session->connection.get(), conversation->cancellable.get(), options_.callTimeout);
      found = co_await session->lookup.find(bus, asked.window);
    } catch (const Silence&) {
      found.reset();
    }
    job->asking = false;
    beingAsked_.erase(asked.window.pid);
    conversations_.erase(conversation);
    if (stopping_) co_return;
    const auto current = jobs_.find(id);
    if (current != jobs_.end() && current->second == job) digest(id, *job, asked.revision, std::move(found));
    askWaiting();
  }

  /// `found` is none when the application kept silent: then what was known of it stands.
  void digest(std::uint32_t id, Job& job, std::uint64_t revision, std::optional<std::vector<TitleBarButton>> found) {
    if (!found) {
      schedule(id, job, std::exchange(job.askAgain, false) ? 0 : backOff(silentDelay, job.attempts++));
      return;
    }
    const bool none = found->empty();
    // Whether or not this answer still fits the window, somebody wants a newer one.
    const bool current = publish(id, revision, std::move(*found));
    if (std::exchange(job.askAgain, false)) {
      schedule(id, job, 0);
    } else if (!current) {
      return;
    } else if (none) {
      if (job.attempts < absentAttempts) schedule(id, job, backOff(absentDelay, job.attempts++));
    } else if (!std::exchange(job.confirmed, true)) {
      schedule(id, job, confirmation);
    }
  }

  /// False when the window is not any more what was asked about; then a newer question is already on its way.
  bool publish(std::uint32_t id, std::uint64_t revision, std::vector<TitleBarButton> found) {
    {
      const ns::LockGuard guard(lock_);
      const auto known = known_.find(id);
      if (known == known_.end() || known->second.revision != revision) return false;
      if (known->second.buttons == found) return true;
      known->second.buttons = std::move(found);
    }
    changed_(id);
    return true;
  }

  std::optional<Known> known(std::uint32_t id) const {
    const ns::LockGuard guard(lock_);
    const auto found = known_.find(id);
    if (found == known_.end()) return std::nullopt;
    return found->second;
  }

  Detached connect() {
    connecting_ = true;
    const auto conversation = begin();
    Object<GDBusConnection> connection;
    try {
      connection = co_await AccessibilityBus::connect(conversation->cancellable.get());
    } catch (const Silence&) {
      connection.reset();
    }
    conversations_.erase(conversation);
    connecting_ = false;
    if (stopping_) co_return;
    if (!connection) {
      reconnect_ = after(backOff(connectDelay, connectAttempts_++), [this] {
        reconnect_.reset();
        connect();
      });
      co_return;
    }
    connectAttempts_ = 0;
    g_signal_connect(connection.get(), "closed", G_CALLBACK(&Worker::closed), this);
    session_ = std::make_shared<Session>(Session{std::move(connection), TitleBarLookup(options_.decorationLayout)});
    askWaiting();
  }

  static void closed(GDBusConnection*, gboolean, GError*, gpointer self) {
    // Conversations that were under way end in silence and are taken up again on the next bus.
    static_cast<Worker*>(self)->disconnect();
  }

  void disconnect() {
    if (session_) g_signal_handlers_disconnect_by_data(session_->connection.get(), this);
    session_.reset();
  }

  const ChangeHandler changed_;
  const Options options_;
  const Context context_;
  const Loop loop_;

  mutable ns::Lock lock_;
  std::unordered_map<std::uint32_t, Known> known_ GUARDED_BY(lock_);
  std::uint64_t lastRevision_ GUARDED_BY(lock_) = 0;

  // The lookup thread's own.
  std::map<std::uint32_t, std::shared_ptr<Job>> jobs_;
  /// The windows whose turn has come, oldest first.
  std::deque<std::uint32_t> waiting_;
  std::set<pid_t> beingAsked_;
  std::list<Conversation> conversations_;
  std::shared_ptr<Session> session_;
  Source reconnect_;
  unsigned connectAttempts_ = 0;
  bool connecting_ = false;
  bool stopping_ = false;

  std::thread thread_;
};

TitleBarButtons::TitleBarButtons(ChangeHandler changed) : TitleBarButtons(std::move(changed), Options{}) {}

TitleBarButtons::TitleBarButtons(ChangeHandler changed, Options options)
    : worker_(std::make_unique<Worker>(std::move(changed), std::move(options))) {}

TitleBarButtons::~TitleBarButtons() = default;

void TitleBarButtons::update(const Window& window) { worker_->update(window); }

void TitleBarButtons::refresh(std::uint32_t window) { worker_->refresh(window); }

void TitleBarButtons::remove(std::uint32_t window) { worker_->remove(window); }

std::vector<TitleBarButton> TitleBarButtons::buttons(std::uint32_t window) const { return worker_->buttons(window); }

}  // namespace atspi
