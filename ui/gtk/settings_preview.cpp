#include "ui/gtk/settings_preview.h"

#include "ui/gtk/modal.h"

#include <algorithm>
#include <utility>

namespace corvane::gtk {
namespace {

constexpr guint kDelay = 80;      // ms, between a change and its picture
constexpr gint64 kQuick = 40'000; // µs; a picture that takes longer waits for a pause
constexpr guint kPause = 300;     // ms

} // namespace

SettingsPreview::SettingsPreview(std::function<win32::SettingsPreview()> make)
    : make_(std::move(make)), frame_(gtk_frame_new(nullptr)), image_(gtk_image_new()) {
    // The dialog keeps its size whatever the picture.
    gtk_widget_set_size_request(image_, win32::kLongestPreviewSide, win32::kLongestPreviewSide);
    gtk_widget_set_valign(frame_, GTK_ALIGN_START);
    gtk_container_add(GTK_CONTAINER(frame_), image_);
}

SettingsPreview::~SettingsPreview() {
    if (timer_ != 0) g_source_remove(timer_);
}

void SettingsPreview::Renew() {
    const bool quick = cost_ <= kQuick;
    if (timer_ != 0) {
        if (quick) return;
        g_source_remove(timer_);
    }
    timer_ = g_timeout_add_full(G_PRIORITY_LOW, quick ? kDelay : kPause, Make, this, nullptr);
}

gboolean SettingsPreview::Make(gpointer self) {
    auto& preview = *static_cast<SettingsPreview*>(self);
    preview.timer_ = 0;
    Guarded([&] {
        const gint64 start = g_get_monotonic_time();
        const win32::SettingsPreview picture = preview.make_();
        preview.cost_ = g_get_monotonic_time() - start;
        const std::size_t size =
            static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 3;
        if (size == 0 || picture.rgb.size() < size) {
            gtk_image_clear(GTK_IMAGE(preview.image_));
            return;
        }
        GBytes* bytes = g_bytes_new(picture.rgb.data(), size);
        GdkPixbuf* pixels = gdk_pixbuf_new_from_bytes(bytes, GDK_COLORSPACE_RGB, FALSE, 8, picture.width,
                                                      picture.height, picture.width * 3);
        gtk_image_set_from_pixbuf(GTK_IMAGE(preview.image_), pixels);
        g_object_unref(pixels);
        g_bytes_unref(bytes);
    });
    return G_SOURCE_REMOVE;
}

} // namespace corvane::gtk
