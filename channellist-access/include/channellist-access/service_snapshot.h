/// @file
/// The record that holds the service converted last.
#ifndef CHANNELLIST_ACCESS_SERVICE_SNAPSHOT_H
#define CHANNELLIST_ACCESS_SERVICE_SNAPSHOT_H

#include <channellist-access/export.h>

#include <string>

/// What dbaccess::fetchServiceItem keeps of a service. The order of the fields is part of the
/// interface.
struct ServiceSnapshot {
    std::string caption;           ///< display name, as delivered
    std::string locator;           ///< tuning URI, stripped
    std::string userIndex;         ///< channel number in the list
    std::string uuid;              ///< identity of the service
    std::string originalAncestor;  ///< network id of the list that the item was copied from
    std::string originalUuid;      ///< empty for every service
    std::string tunerUuid;         ///< identity of the tuning record
    std::string originalLcn;       ///< logical channel number
    std::string nitId;             ///< id of the network information table
    int previewPage;               ///< Teletext preview page
    int subtitlePage;              ///< Teletext subtitle page
    int attributes;                ///< stored attribute word, see dbaccess::fetchServiceItem
    int encoding;                  ///< Teletext character encoding
    int itemKind;                  ///< an itemType
    unsigned int servicePid;       ///< database key of the service
    bool visible;                  ///< shown in the list
    bool selectable;               ///< can be chosen
};

/// The service converted last; empty and 0 at load. Written by dbaccess::fetchServiceItem, read by
/// dbaccess::computeService; both run under svresult_mutex inside the library. It has no lock of
/// its own.
extern CHANNELLIST_ACCESS_EXPORT ServiceSnapshot sv;

#endif
