// Which messages are written, by module and level.
#ifndef ORV_DEBUG_MESSAGE_FILTER_H
#define ORV_DEBUG_MESSAGE_FILTER_H

#include <array>
#include <cstddef>
#include <string_view>

namespace orvdebug {

/// What the environment variable ORV_DEBUG opens (the README gives its grammar), over the errors,
/// which are always written. It allocates nothing, so that a question never does either.
class MessageFilter {
  public:
    /// Reads the items of `text` and reports each unreadable one on standard error.
    explicit MessageFilter(std::string_view text) noexcept;

    /// @return whether messages of this module and level are written.
    bool enables(unsigned int module, unsigned int level) const noexcept;

  private:
    // Both words of a descriptor have 16 bits, so no module or level has this value.
    static constexpr unsigned int kAny = 0x10000;

    struct Opening {
        unsigned int module = kAny;
        unsigned int level = kAny;
    };

    void addItem(std::string_view item) noexcept;
    static bool parseItem(std::string_view item, Opening& opening) noexcept;
    static bool parseWord(std::string_view text, unsigned int& word) noexcept;

    std::array<Opening, 64> openings_;
    std::size_t count_ = 0;
};

}  // namespace orvdebug

#endif
