#include "benchmark_database.h"

#include <channel-database/builder.h>

#include <array>
#include <cstdio>
#include <system_error>

#include "scratch.h"

namespace benchmarks {

namespace {

using namespace channel_database;

constexpr std::array kDeliveries = {
    Delivery::DvbS2, Delivery::DvbC,  Delivery::DvbT2, Delivery::Analog, Delivery::Ip,
    Delivery::DvbS,  Delivery::DvbC2, Delivery::DvbT,  Delivery::Uri,
};

// As long as real ones: twelve characters on average, one in five more than fifteen.
constexpr std::array kNames = {
    "Das Erste HD", "ZDF", "Bayerisches FS Nord HD", "NPO 1 HD", "RTL Television",
    "arte",         "VOX", "Deutschlandfunk Kultur", "SWR3",     "BBC One London",
};

// The operator's list, which is looked for first.
constexpr char kAstraCreator[] = "servicelist://tamun.Astra 19.2 E.14";
constexpr char kBissKey[] = "1A2B3C811A2B3C81";
constexpr Id kAstraAnchorFrequency = 12603750;

std::string uuidText(char const* form, int key) {
    char text[37];
    std::snprintf(text, sizeof text, form, static_cast<unsigned int>(key));
    return text;
}

bool hasLcn(Delivery delivery) {
    return delivery == Delivery::DvbT || delivery == Delivery::DvbT2 ||
           delivery == Delivery::DvbC || delivery == Delivery::DvbC2;
}

// Adds services one by one, with a new tuner for every eighth of a kind.
class ServiceMaker {
  public:
    explicit ServiceMaker(ChannelDatabase& database) : database_(database) {}

    Delivery add(int key) {
        auto const index = static_cast<std::size_t>(key);
        std::size_t const kind = index % kDeliveries.size();
        Delivery const delivery = kDeliveries[kind];
        if (index / kDeliveries.size() % kServicesOfATuner == 0)
            tuners_[kind] = kNewId;
        Service service =
            database_.service(delivery, kNames[index % kNames.size()], key, tuners_[kind]);
        service.uuid(serviceUuid(key))
            .encrypted(key % 3 == 0 ? 1 : 0)
            .hdtv(key % 2)
            .bissKey(kBissKey);
        if (key % 5 == 0)
            service.radio();
        if (delivery == Delivery::Uri)
            service.uri("rec://plain/stream?url=http://radio.example/" + std::to_string(key));
        if (delivery == Delivery::DvbS && key <= kServicesOfATuner)
            service.frequency(kAstraAnchorFrequency);
        if (service.tuner() != kNewId && tuners_[kind] == kNewId)
            service.tunerUuid(uuidText("1f0e2d3c-0000-4000-8000-%012x", key));
        tuners_[kind] = service.tuner();
        return delivery;
    }

  private:
    ChannelDatabase& database_;
    std::array<Id, kDeliveries.size()> tuners_ = {};
};

void addLists(ChannelDatabase& database, Shape const& shape) {
    List const all = database.list("tamun.sl2.servicelist$all").uuid(kAllList).name("$all");
    List const astra = database.list(kAstraCreator).uuid("list-astra");
    ServiceMaker services(database);
    for (int key = 1; key <= shape.services; ++key) {
        Delivery const delivery = services.add(key);
        database.put(all, key, key).deleted(key % 50 == 0 ? 1 : 0);
        if (hasLcn(delivery))
            database.lcn(key, all, key % 1000);
        if (delivery == Delivery::DvbS)
            database.put(astra, key, key);
    }
    for (int fav = 1; fav <= 4; ++fav) {
        std::string const number = std::to_string(fav);
        List const list = database.list("User.tvFAV" + number).uuid("list-fav" + number);
        for (int key = 1; key <= shape.favorites; ++key)
            database.put(list, key, key);
    }
    for (int more = 6; more < kListCount; ++more)
        database.list("servicelist://tamun.dvbs." + std::to_string(more)).networkId(more);
}

std::string fileName(Shape const& shape) {
    return std::to_string(shape.services) + "-" + std::to_string(shape.favorites) +
           (shape.indexes == Indexes::Recommended ? "-indexed" : "-bare");
}

}  // namespace

std::string serviceUuid(int key) { return uuidText("7c9e6679-0000-4000-8000-%012x", key); }

DatabaseCopy::DatabaseCopy(Shape const& shape) {
    static int copies = 0;
    std::filesystem::path const original = Scratch::directory() / fileName(shape);
    if (!std::filesystem::exists(original)) {
        ChannelDatabase database(original, shape.indexes);
        Transaction transaction(database);
        addLists(database, shape);
        transaction.commit();
    }
    path_ = original;
    path_ += "-" + std::to_string(++copies);
    std::filesystem::copy_file(original, path_);
}

DatabaseCopy::~DatabaseCopy() {
    std::error_code ignored;  // the scratch directory goes at the end
    std::filesystem::remove(path_, ignored);
}

}  // namespace benchmarks
