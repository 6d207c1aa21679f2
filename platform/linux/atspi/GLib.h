// Owners for what GLib hands out.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace atspi {

struct ObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using Object = std::unique_ptr<T, ObjectUnref>;

template <class T>
Object<T> retained(T* object) {
  return Object<T>(static_cast<T*>(g_object_ref(object)));
}

struct VariantUnref {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, VariantUnref>;

struct ErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};
using Error = std::unique_ptr<GError, ErrorFree>;

struct ContextUnref {
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
};
using Context = std::unique_ptr<GMainContext, ContextUnref>;

struct LoopUnref {
  void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
};
using Loop = std::unique_ptr<GMainLoop, LoopUnref>;

/// A source leaves its context together with its owner.
struct SourceDestroy {
  void operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
  }
};
using Source = std::unique_ptr<GSource, SourceDestroy>;

}  // namespace atspi
