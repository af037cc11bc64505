#include "agent/session_texts.h"

namespace datacentre::agent {

namespace {

// "123 456 789", as the join page writes it.
std::string grouped(const std::string& key) {
    if (key.size() <= 6)
        return key;
    return key.substr(0, 3) + " " + key.substr(3, 3) + " " + key.substr(6);
}

} // namespace

std::string windowTitle(const JoinDetails& details) {
    const std::string key = details.value("key");
    return key.empty() ? "Ovra" : "Ovra – session " + grouped(key);
}

std::string heading(const JoinDetails& details) {
    return details.wellFormed ? "Session " + grouped(details.value("key")) : "No session to join";
}

std::string stateText(const JoinDetails& details) {
    return details.wellFormed ? "●  Connected" : "The join details are missing or cannot be read.";
}

std::vector<DetailRow> detailRows(const JoinDetails& details) {
    std::vector<DetailRow> rows{{"Server", details.value("webServerName")},
                                {"Data centre", details.value("DC")},
                                {"You are", details.value("email")}};
    for (auto& row : rows)
        if (row.value.empty() || row.value == "(null)")
            row.value = "–";
    return rows;
}

} // namespace datacentre::agent
