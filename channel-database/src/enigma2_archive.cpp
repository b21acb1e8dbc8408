#include "enigma2_archive.h"

#include <archive.h>
#include <archive_entry.h>

#include <cstdint>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include "enigma2_settings.h"
#include "limited_text.h"

namespace channel_database {
namespace {

constexpr std::int64_t kMostUnpacked = std::int64_t{256} << 20;
constexpr std::int64_t kLeastEntry = 512;  // of which even an empty one is made in a tar

struct Close {
    void operator()(archive* opened) const { archive_read_free(opened); }
};

struct Path {
    std::string folder, file;
};

Path split(std::string const& path) {
    auto const slash = path.rfind('/');
    if (slash == std::string::npos)
        return {"", path};
    return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

bool leadsUpwards(std::string const& path) {
    std::string const closed = "/" + path + "/";
    return closed.find("/../") != std::string::npos;
}

class Reader {
  public:
    Reader(std::string_view content, std::string const& name)
        : name_(name), archive_(archive_read_new()) {
        if (!archive_)
            throw std::bad_alloc();
        archive_read_support_filter_gzip(archive_.get());
        archive_read_support_filter_bzip2(archive_.get());
        archive_read_support_filter_xz(archive_.get());
        archive_read_support_format_tar(archive_.get());
        archive_read_support_format_zip(archive_.get());
        if (archive_read_open_memory(archive_.get(), content.data(), content.size()) != ARCHIVE_OK)
            failDamaged();
    }

    // The lists by their folders.
    std::map<std::string, Enigma2Settings> read() {
        std::map<std::string, Enigma2Settings> folders;
        archive_entry* entry = nullptr;
        for (int code; (code = archive_read_next_header(archive_.get(), &entry)) != ARCHIVE_EOF;) {
            if (code < ARCHIVE_WARN)
                failDamaged();
            std::string const path = pathOf(entry);
            if (leadsUpwards(path))
                fail("it holds a path upwards, " + path);
            count(kLeastEntry);
            auto const [folder, file] = split(path);
            if (!isEnigma2File(file) || archive_entry_filetype(entry) == AE_IFDIR) {
                count(archive_entry_size(entry));  // before it is skipped, which unpacks it
                continue;
            }
            if (archive_entry_filetype(entry) != AE_IFREG ||
                archive_entry_hardlink(entry) != nullptr)
                fail(path + " is a link or no file");
            Enigma2Settings& settings = folders[folder];
            settings.place = name_ + ":" + folder;
            settings.files[file] = textOf(path);
        }
        return folders;
    }

    [[noreturn]] void fail(std::string const& what) const {
        throw std::runtime_error(name_ + ": " + what);
    }

  private:
    [[noreturn]] void failDamaged() const {
        char const* const reason = archive_error_string(archive_.get());
        fail(std::string("the archive is cut or damaged") +
             (reason == nullptr ? "" : ": " + std::string(reason)));
    }

    void count(std::int64_t size) {
        if (size < 0 || (unpacked_ += size) > kMostUnpacked ||
            archive_filter_bytes(archive_.get(), 0) > kMostUnpacked)
            fail("the archive unpacks to more than 256 MiB, as no receiver's settings do");
    }

    // As it is stored where the locale has no such letters.
    static std::string pathOf(archive_entry* entry) {
        char const* path = archive_entry_pathname(entry);
        if (path == nullptr)
            path = archive_entry_pathname_utf8(entry);
        std::string const stored = path == nullptr ? "" : path;
        return stored.compare(0, 2, "./") == 0 ? stored.substr(2) : stored;
    }

    std::string textOf(std::string const& path) {
        std::string text;
        std::vector<char> part(1U << 16U);
        for (;;) {
            la_ssize_t const size = archive_read_data(archive_.get(), part.data(), part.size());
            if (size < 0)
                failDamaged();
            if (size == 0)
                break;
            count(size);
            text.append(part.data(), static_cast<std::size_t>(size));
            if (text.size() > kLargestList)
                fail(path + " is larger than 64 MiB, as no channel list is");
        }
        return text;
    }

    std::string const& name_;
    std::unique_ptr<archive, Close> archive_;
    std::int64_t unpacked_ = 0;
};

bool hasServices(Enigma2Settings const& settings) {
    for (auto const& [name, text] : settings.files)
        if (isEnigma2Service(name))
            return true;
    return false;
}

}  // namespace

bool isArchive(std::string_view beginning) {
    using namespace std::string_view_literals;
    constexpr std::size_t kTarMark = 257;
    for (std::string_view const mark : {"\x1F\x8B"sv, "PK\3\4"sv, "PK\5\6"sv, "BZh"sv,
                                        "\xFD"
                                        "7zXZ"sv})
        if (beginning.substr(0, mark.size()) == mark)
            return true;
    return beginning.size() > kTarMark && beginning.substr(kTarMark, 5) == "ustar";
}

ChannelsConf readEnigma2Archive(std::string_view content, std::string const& name) {
    Reader reader(content, name);
    std::map<std::string, Enigma2Settings> const folders = reader.read();
    for (bool const withServices : {true, false}) {
        Enigma2Settings const* found = nullptr;
        for (auto const& [folder, settings] : folders) {
            if (hasServices(settings) != withServices)
                continue;
            if (found != nullptr)
                reader.fail("it holds lists in several folders, " + found->place + " and " +
                            settings.place);
            found = &settings;
        }
        if (found != nullptr)
            return readEnigma2Settings(*found);
    }
    reader.fail("the archive holds neither lamedb nor bouquets");
}

}  // namespace channel_database
