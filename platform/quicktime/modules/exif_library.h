// The functions of libexif, which stands in a module: thousands of names are put into its tables when it is
// loaded.
#pragma once

#include "platform/modules/modules.h"

#include <libexif/exif-data.h>

namespace qt {

/// libexif's functions under their own names without the prefix, behaving as its manual says. Only the module
/// makes one of these: the addresses are what it is linked to.
struct ExifLibrary {
    decltype(&exif_content_foreach_entry) content_foreach_entry = &exif_content_foreach_entry;
    decltype(&exif_content_get_ifd) content_get_ifd = &exif_content_get_ifd;
    decltype(&exif_data_new_from_data) data_new_from_data = &exif_data_new_from_data;
    decltype(&exif_data_unref) data_unref = &exif_data_unref;
    decltype(&exif_entry_get_value) entry_get_value = &exif_entry_get_value;
    decltype(&exif_ifd_get_name) ifd_get_name = &exif_ifd_get_name;
    decltype(&exif_tag_get_name_in_ifd) tag_get_name_in_ifd = &exif_tag_get_name_in_ifd;
};

inline constinit modules::Library<ExifLibrary> g_exif{"exif"};

} // namespace qt
