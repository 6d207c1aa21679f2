#include "platform/linux/x11/WindowManagers/SettingsWatch.h"

#include <map>
#include <thread>
#include <utility>

#include "platform/linux/atspi/GLib.h"
#include "platform/linux/freedesktop/Files.h"

namespace x11 {

namespace {

constexpr const char* kwinService = "org.kde.KWin";
constexpr const char* kwinPath = "/KWin";
constexpr int kwinTimeout = 5000;  // milliseconds
/// A file is written in several steps, and kwin waits for some time before it acts upon what has changed.
constexpr unsigned untilKWinHasChanged = 1000;

struct SchemaUnref {
  void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
};

/// GSettings ends the program that asks for what is not installed.
bool isInstalled(const Setting& setting) {
  GSettingsSchemaSource* source = g_settings_schema_source_get_default();
  if (source == nullptr) return false;
  const std::unique_ptr<GSettingsSchema, SchemaUnref> schema(
      g_settings_schema_source_lookup(source, setting.place.c_str(), TRUE));
  return schema && g_settings_schema_has_key(schema.get(), setting.name.c_str()) != FALSE;
}

std::string textOf(const atspi::Variant& value) {
  if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING)) return g_variant_get_string(value.get(), nullptr);
  const std::unique_ptr<gchar, decltype(&g_free)> printed(g_variant_print(value.get(), FALSE), g_free);
  return printed.get();
}

}  // namespace

class SettingsWatch::Worker {
 public:
  Worker(std::vector<Setting> settings, Handler changed)
      : settings_(std::move(settings)),
        changed_(std::move(changed)),
        context_(g_main_context_new()),
        loop_(g_main_loop_new(context_.get(), FALSE)),
        thread_([this] { run(); }) {}

  ~Worker() {
    // From within, so that it is not missed by a loop that has not begun yet.
    const atspi::Source quit(after(0, [](gpointer self) -> gboolean {
      g_main_loop_quit(static_cast<Worker*>(self)->loop_.get());
      return G_SOURCE_REMOVE;
    }));
    thread_.join();
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

 private:
  void run() {
    g_main_context_push_thread_default(context_.get());
    for (const Setting& setting : settings_) {
      if (setting.source == Setting::Source::GSettings) follow(setting);
      if (setting.source == Setting::Source::File) followFile(setting.place);
      if (setting.source == Setting::Source::KWin) followKWin();
    }
    if (!isAboutKWin_) tell();
    g_main_loop_run(loop_.get());
    // What was called off is still to be told so.
    g_cancellable_cancel(callingOff_.get());
    while (callsUnderWay_ > 0) g_main_context_iteration(context_.get(), TRUE);
    if (bus_) g_dbus_connection_signal_unsubscribe(bus_.get(), reloadSubscription_);
    for (const auto& [schema, settings] : gsettings_) g_signal_handlers_disconnect_by_data(settings.get(), this);
    for (const auto& monitor : monitors_) g_signal_handlers_disconnect_by_data(monitor.get(), this);
    gsettings_.clear();
    monitors_.clear();
    g_main_context_pop_thread_default(context_.get());
  }

  GSource* after(unsigned delay, GSourceFunc task) {
    GSource* source = g_timeout_source_new(delay);
    g_source_set_callback(source, task, this, nullptr);
    g_source_attach(source, context_.get());
    return source;
  }

  void follow(const Setting& setting) {
    if (!isInstalled(setting) || gsettings_.contains(setting.place)) return;
    auto& settings = gsettings_[setting.place];
    settings.reset(g_settings_new(setting.place.c_str()));
    const auto changed = +[](GSettings*, const gchar*, gpointer self) { static_cast<Worker*>(self)->tell(); };
    g_signal_connect(settings.get(), "changed", G_CALLBACK(changed), this);
  }

  void followFile(const std::string& path) {
    const atspi::Object<GFile> file(g_file_new_for_path(path.c_str()));
    atspi::Object<GFileMonitor> monitor(g_file_monitor_file(file.get(), G_FILE_MONITOR_NONE, nullptr, nullptr));
    if (!monitor) return;
    const auto changed = +[](GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, gpointer self) {
      static_cast<Worker*>(self)->settingsAreInDoubt();
    };
    g_signal_connect(monitor.get(), "changed", G_CALLBACK(changed), this);
    monitors_.push_back(std::move(monitor));
  }

  void followKWin() {
    isAboutKWin_ = true;
    ++callsUnderWay_;
    const auto connected = +[](GObject*, GAsyncResult* result, gpointer self) {
      auto& worker = *static_cast<Worker*>(self);
      --worker.callsUnderWay_;
      worker.bus_.reset(g_bus_get_finish(result, nullptr));
      if (!worker.bus_) return;
      const auto reloads = +[](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
                               gpointer same) { static_cast<Worker*>(same)->settingsAreInDoubt(); };
      worker.reloadSubscription_ =
          g_dbus_connection_signal_subscribe(worker.bus_.get(), nullptr, kwinService, "reloadConfig", kwinPath, nullptr,
                                             G_DBUS_SIGNAL_FLAGS_NONE, reloads, &worker, nullptr);
      worker.askKWin();
    };
    g_bus_get(G_BUS_TYPE_SESSION, callingOff_.get(), connected, this);
  }

  void settingsAreInDoubt() {
    if (!isAboutKWin_) return tell();
    changed_({});
    later_.reset(after(untilKWinHasChanged, [](gpointer self) -> gboolean {
      static_cast<Worker*>(self)->askKWin();
      return G_SOURCE_REMOVE;
    }));
  }

  void askKWin() {
    if (!bus_) return;
    ++callsUnderWay_;
    const auto answered = +[](GObject*, GAsyncResult* result, gpointer self) {
      auto& worker = *static_cast<Worker*>(self);
      --worker.callsUnderWay_;
      const atspi::Variant answer(g_dbus_connection_call_finish(worker.bus_.get(), result, nullptr));
      if (!answer) return;
      const gchar* text = nullptr;
      g_variant_get(answer.get(), "(&s)", &text);
      worker.kwin_ = text;
      worker.tell();
    };
    g_dbus_connection_call(bus_.get(), kwinService, kwinPath, kwinService, "supportInformation", nullptr,
                           G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, kwinTimeout, callingOff_.get(),
                           answered, this);
  }

  void tell() {
    SettingValues values;
    for (const Setting& setting : settings_) {
      switch (setting.source) {
        case Setting::Source::GSettings:
          if (const auto found = gsettings_.find(setting.place); found != gsettings_.end() && isInstalled(setting)) {
            const atspi::Variant value(g_settings_get_value(found->second.get(), setting.name.c_str()));
            values[setting] = textOf(value);
          }
          break;
        case Setting::Source::File: {
          constexpr std::size_t largestFile = 1024 * 1024;
          freedesktop::FileContent content = freedesktop::readFile(setting.place, largestFile);
          if (content.error == 0) values[setting] = std::move(content.text);
          break;
        }
        case Setting::Source::KWin:
          values[setting] = kwin_;
          break;
      }
    }
    changed_(values);
  }

  const std::vector<Setting> settings_;
  const Handler changed_;
  const atspi::Context context_;
  const atspi::Loop loop_;
  const atspi::Object<GCancellable> callingOff_{g_cancellable_new()};
  // Of the thread.
  std::map<std::string, atspi::Object<GSettings>> gsettings_;
  std::vector<atspi::Object<GFileMonitor>> monitors_;
  bool isAboutKWin_ = false;
  atspi::Object<GDBusConnection> bus_;
  guint reloadSubscription_ = 0;
  std::string kwin_;
  atspi::Source later_;
  int callsUnderWay_ = 0;
  std::thread thread_;
};

SettingsWatch::SettingsWatch(std::vector<Setting> settings, Handler changed)
    : worker_(std::make_unique<Worker>(std::move(settings), std::move(changed))) {}

SettingsWatch::~SettingsWatch() = default;

}  // namespace x11
