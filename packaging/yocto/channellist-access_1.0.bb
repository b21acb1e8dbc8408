# An example for a set's image. The source is an archive of this repository:
#   git archive --prefix=channellist-access-1.0/ -o channellist-access-1.0.tar.gz HEAD
SUMMARY = "Channel-list access for the TV services of a set"
SECTION = "libs"
LICENSE = "CLOSED"

SRC_URI = "file://channellist-access-${PV}.tar.gz"
S = "${WORKDIR}/channellist-access-${PV}"

# orv-debug stands for the recipe of the maker's debug library.
DEPENDS = "boost sqlite3 orv-debug"

inherit cmake pkgconfig

EXTRA_OECMAKE = "\
    -DBUILD_TESTING=OFF \
    -DCHANNELLIST_ACCESS_ORV_DEBUG_LIBRARY=${STAGING_LIBDIR}/liborv-debug.so \
"
