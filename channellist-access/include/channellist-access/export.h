/// @file
/// The export macro.
#ifndef CHANNELLIST_ACCESS_EXPORT_H
#define CHANNELLIST_ACCESS_EXPORT_H

/// Marks what the shared library exports; everything else in it is hidden.
#if defined(__GNUC__)
#define CHANNELLIST_ACCESS_EXPORT __attribute__((visibility("default")))
#else
#define CHANNELLIST_ACCESS_EXPORT
#endif

#endif
