#include "cwmp/UciText.h"

#include <string_view>

namespace cwmp {

namespace {

// The values of 'a' 'it'\''s', from the position on up to the line feed that ends them, which may
// also stand inside of quotes. Without any quote it is one plain word.
std::vector<std::string> readValues(std::string_view text, std::size_t& position) {
    std::vector<std::string> values(1);
    bool isQuoted = false;
    for (; position < text.size(); ++position) {
        const char letter = text[position];
        const bool isEscaped = !isQuoted && letter == '\\' && position + 1 < text.size();
        if (letter == '\'')
            isQuoted = !isQuoted;
        else if (!isQuoted && letter == '\n')
            break;
        else if (!isQuoted && letter == ' ')
            values.emplace_back();
        else
            values.back() += isEscaped ? text[++position] : letter;
    }
    if (position < text.size()) ++position;
    return values;
}

/// Gives sections the names that they have by their type: the first of type acs is @acs[0].
class Sections {
  public:
    void add(const std::string& section, const std::string& type) {
        const std::size_t number = counts_[type]++;
        names_[section] = '@' + type + '[' + std::to_string(number) + ']';
    }
    std::string nameOf(const std::string& section) const {
        const auto name = names_.find(section);
        return name == names_.end() ? section : name->second;
    }

  private:
    std::map<std::string, std::size_t> counts_;
    std::map<std::string, std::string> names_;
};

}  // namespace

UciOptions parseUciShow(const std::string& text) {
    UciOptions options;
    Sections sections;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t equals = text.find_first_of("=\n", position);
        if (equals == std::string::npos) break;
        const std::string path = text.substr(position, equals - position);
        position = equals + 1;
        if (text[equals] == '\n') continue;
        auto values = readValues(text, position);
        const std::size_t section = path.find('.');
        if (section == std::string::npos) continue;
        const std::size_t option = path.find('.', section + 1);
        const std::string name = path.substr(section + 1, option - section - 1);
        if (option == std::string::npos) {
            sections.add(name, values.front());
            options[sections.nameOf(name)] = std::move(values);
        } else {
            options[sections.nameOf(name) + path.substr(option)] = std::move(values);
        }
    }
    return options;
}

std::string firstOf(const UciOptions& options, const std::string& name) {
    const auto option = options.find(name);
    return option == options.end() || option->second.empty() ? "" : option->second.front();
}

}  // namespace cwmp
