// Bouquets beside the list of services that they name.
#include "enigma2_settings.h"

#include <channel-database/enigma2.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "enigma2_ids.h"
#include "limited_text.h"

namespace channel_database {
namespace {

constexpr char const* kServiceFiles[] = {"lamedb", "lamedb5"};

bool endsWith(std::string_view name, std::string_view end) {
    return name.size() > end.size() && name.substr(name.size() - end.size()) == end;
}

struct BouquetFile {
    std::string name;
    std::string index;  // that names it, at this line
    int line;
};

// The files that bouquets.tv names, in its order.
std::vector<BouquetFile> namedBouquets(Enigma2Settings const& settings) {
    constexpr std::string_view kMark = "FROM BOUQUET \"";
    std::vector<BouquetFile> bouquets;
    for (char const* index : {"bouquets.tv", "bouquets.radio"}) {
        auto const file = settings.files.find(index);
        if (file == settings.files.end())
            continue;
        std::istringstream in(file->second);
        int number = 1;
        for (std::string line; std::getline(in, line); ++number) {
            auto const mark = line.find(kMark);
            auto const begin = mark + kMark.size();
            auto const end = mark == std::string::npos ? mark : line.find('"', begin);
            if (end != std::string::npos)
                bouquets.push_back({line.substr(begin, end - begin), index, number});
        }
    }
    return bouquets;
}

std::vector<BouquetFile> bouquetsByName(Enigma2Settings const& settings) {
    std::vector<BouquetFile> bouquets;
    for (auto const& [name, text] : settings.files)
        if (name.rfind("userbouquet.", 0) == 0)
            bouquets.push_back({name, name, 0});
    return bouquets;
}

// The services of lamedb by their triplets.
class KnownServices {
  public:
    explicit KnownServices(std::vector<Channel> const& channels) {
        for (Channel const& channel : channels)
            services_.emplace(tripletText(channel), channel);
    }
    // The one of the same place, or else source, else any; null without one.
    Channel const* find(Channel const& reference) const {
        auto const [first, last] = services_.equal_range(tripletText(reference));
        Channel const* ofSource = nullptr;
        for (auto service = first; service != last; ++service) {
            if (service->second.place == reference.place)
                return &service->second;
            if (ofSource == nullptr && service->second.source == reference.source)
                ofSource = &service->second;
        }
        return ofSource != nullptr || first == last ? ofSource : &first->second;
    }

    bool isEmpty() const { return services_.empty(); }

  private:
    std::multimap<std::string, Channel> services_;
};

void append(ChannelsConf bouquet, std::string const& file, KnownServices const& services,
            ChannelsConf& list) {
    auto const group = static_cast<int>(list.groups.size());
    list.groups.push_back(bouquet.groups.empty() ? file : bouquet.groups[0]);
    for (Channel& reference : bouquet.channels) {
        Channel channel = reference;
        Channel const* const known = reference.isReference ? services.find(reference) : nullptr;
        if (known != nullptr)
            channel = *known;
        else if (reference.isReference && !services.isEmpty())
            list.rejected.push_back(
                {reference.line, "lamedb has no such service", reference.name, file});
        channel.isReference = reference.isReference;
        channel.group = group;
        channel.line = reference.line;
        channel.number = static_cast<int>(list.channels.size()) + 1;
        list.channels.push_back(std::move(channel));
    }
    for (RejectedLine& rejected : bouquet.rejected)
        list.rejected.push_back({rejected.line, rejected.reason, rejected.text, file});
}

ChannelsConf readServices(Enigma2Settings const& settings) {
    for (char const* name : kServiceFiles) {
        auto const file = settings.files.find(name);
        if (file == settings.files.end())
            continue;
        std::istringstream text(file->second);
        ChannelsConf list = parseLamedb(text);
        for (RejectedLine& rejected : list.rejected)
            rejected.file = settings.place + name;
        return list;
    }
    return {};
}

}  // namespace

bool isEnigma2Service(std::string_view name) {
    return std::find(std::begin(kServiceFiles), std::end(kServiceFiles), name) !=
           std::end(kServiceFiles);
}

bool isEnigma2File(std::string_view name) {
    return isEnigma2Service(name) ||
           (name.substr(0, 1) != "." && (endsWith(name, ".tv") || endsWith(name, ".radio")));
}

ChannelsConf readEnigma2Settings(Enigma2Settings const& settings) {
    std::vector<BouquetFile> bouquets = namedBouquets(settings);
    bool const isByName = bouquets.empty() && !(bouquets = bouquetsByName(settings)).empty();
    ChannelsConf list = readServices(settings);
    if (isByName)
        list.notes.emplace_back("without bouquets.tv the bouquets are in the order of their names");
    KnownServices const services(list.channels);
    for (BouquetFile const& bouquet : bouquets) {
        auto const file = settings.files.find(bouquet.name);
        if (file == settings.files.end()) {
            bool const isElsewhere = bouquet.name.find('/') != std::string::npos;
            list.rejected.push_back(
                {bouquet.line,
                 isElsewhere ? "a bouquet outside of the folder" : "a bouquet that cannot be read",
                 bouquet.name, settings.place + bouquet.index});
            continue;
        }
        std::istringstream text(file->second);
        append(parseBouquet(text), settings.place + bouquet.name, services, list);
    }
    return list;
}

ChannelsConf readEnigma2Folder(std::string const& folder) {
    namespace fs = std::filesystem;
    Enigma2Settings settings{folder + "/", {}};
    std::size_t size = 0;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::string const name = entry->path().filename();
        std::error_code ignored;
        if (!isEnigma2File(name) || !entry->is_regular_file(ignored))
            continue;
        std::ifstream file(entry->path(), std::ios::binary);
        if (!file)
            continue;
        std::string& text = settings.files[name];
        text = limitedText(file, settings.place + name);
        if ((size += text.size()) > kLargestList)
            throw std::runtime_error(folder + ": larger than 64 MiB, as no receiver's lists are");
    }
    if (error)
        throw std::runtime_error("cannot read " + folder + ": " + error.message());
    if (settings.files.empty())
        throw std::runtime_error(folder + " is a folder without lamedb or bouquets.tv");
    return readEnigma2Settings(settings);
}

}  // namespace channel_database
