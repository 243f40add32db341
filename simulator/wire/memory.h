#pragma once

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "wire/request.h"

namespace sim {

// What the controller keeps over a loss of power: a section for each family of settings.
class Memory {
 public:
    using Save = std::function<Json()>;
    // Throws Refusal for what no client could have set.
    using Load = std::function<void(const Request& section)>;

    struct Number {
        const char* key;
        int& value;
        int low = INT_MIN, high = INT_MAX;
    };

    void keep(const char* section, Save save, Load load);
    void keep(const char* section, const std::vector<Number>& numbers);

    // All sections.
    Json saved() const;

    // Sections that are missing keep their defaults. Throws Refusal for a section that is unknown or cannot be loaded.
    void load(const Json& sections) const;

 private:
    struct Section {
        std::string name;
        Save save;
        Load load;
    };

    std::vector<Section> sections_;  // in the order in which they are loaded
};

}  // namespace sim
