# An example for a set's image. The source is an archive of this repository, of version ${PV}:
#   git archive --prefix=channellist-access-${PV}/ -o channellist-access-${PV}.tar.gz HEAD
SUMMARY = "Channel-list access for the TV services of a set"
SECTION = "libs"
LICENSE = "CLOSED"

SRC_URI = "file://channellist-access-${PV}.tar.gz"
S = "${WORKDIR}/channellist-access-${PV}"

# orv-debug stands for the recipe of the maker's debug library.
DEPENDS = "boost sqlite3 orv-debug"

inherit cmake pkgconfig ptest

EXTRA_OECMAKE = "-DCHANNELLIST_ACCESS_ORV_DEBUG_LIBRARY=${STAGING_LIBDIR}/liborv-debug.so"

# The command `channellist`, for developers' images; its libraries come from meta-oe, libcsv from a
# recipe of the set's.
PACKAGECONFIG ??= "tools ${@bb.utils.contains('PTEST_ENABLED', '1', 'tests', '', d)}"
PACKAGECONFIG[tools] = "-DCHANNELLIST_ACCESS_BUILD_TOOLS=ON,-DCHANNELLIST_ACCESS_BUILD_TOOLS=OFF,cli11 nlohmann-json utf8proc libcsv libarchive"
PACKAGECONFIG[tests] = "-DBUILD_TESTING=ON,-DBUILD_TESTING=OFF,googletest libarchive"

PACKAGES =+ "${PN}-tools"
SUMMARY:${PN}-tools = "Shows, checks and edits the channel lists of a set"
FILES:${PN}-tools = "\
    ${bindir}/channellist \
    ${datadir}/bash-completion \
    ${datadir}/fish \
    ${datadir}/zsh \
"

# Programs and run-ptest go to ${PTEST_PATH}, which is ${libdir}/channellist-access/ptest.
do_install_ptest() {
    DESTDIR='${D}' cmake --install ${B} --component tests
}
