#include "config/data_centres.h"

#include "support/rendering.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace lumora {

namespace {

// Deployment data: another deployment replaces these hosts and the suffix, and nothing else.
constexpr std::string_view kDeveloperSuffix = "dev.ovratessel.example";

struct DataCentre {
    std::string_view key;
    std::string_view host;
};

constexpr std::array<DataCentre, 30> kDataCentres{{
    {"com", "com.ovratessel.example"},
    {"eu", "eu.ovratessel.example"},
    {"in", "in.ovratessel.example"},
    {"jp", "jp.ovratessel.example"},
    {"au", "au.ovratessel.example"},
    {"cn", "cn.ovratessel.example"},
    {"uk", "uk.ovratessel.example"},
    {"ca", "ca.ovratessel.example"},
    {"sa", "sa.ovratessel.example"},
    {"ae", "ae.ovratessel.example"},
    {"inec", "inec.ovratessel.example"},
    {"sg", "sg.ovratessel.example"},
    {"lab", "lab.ovratessel.example"},
    {"lab_com", "lab.ovratessel.example"},
    {"lab_in", "lab-in.ovratessel.example"},
    {"stage", "stage.ovratessel.example"},
    {"stage_com", "stage.ovratessel.example"},
    {"pre", "pre.ovratessel.example"},
    {"pre_com", "pre.ovratessel.example"},
    {"pre_eu", "pre-eu.ovratessel.example"},
    {"pre_in", "pre-in.ovratessel.example"},
    {"pre_jp", "pre-jp.ovratessel.example"},
    {"pre_au", "pre-au.ovratessel.example"},
    {"pre_cn", "pre-cn.ovratessel.example"},
    {"pre_uk", "pre-uk.ovratessel.example"},
    {"pre_ca", "pre-ca.ovratessel.example"},
    {"pre_sa", "pre-sa.ovratessel.example"},
    {"pre_ae", "pre-ae.ovratessel.example"},
    {"pre_inec", "pre-inec.ovratessel.example"},
    {"pre_sg", "pre-sg.ovratessel.example"},
}};

constexpr std::array<std::string_view, 9> kKeysOfDigitsFromOne{"eu", "in", "au", "cn", "jp",
                                                               "ca", "uk", "sa", "ae"};

} // namespace

std::optional<std::string> dataCentreHost(std::string_view key) {
    const auto found = std::find_if(kDataCentres.begin(), kDataCentres.end(),
                                    [key](const auto& row) { return row.key == key; });
    if (found == kDataCentres.end())
        return std::nullopt;
    return std::string(found->host);
}

std::string developerHost(const std::optional<std::string>& key) {
    return fmt::format("{}.{}", render(key), kDeveloperSuffix);
}

std::optional<std::string> dataCentreForDigit(char digit) {
    if (digit < '1' || digit > '9')
        return std::nullopt;
    return std::string(kKeysOfDigitsFromOne.at(static_cast<std::size_t>(digit - '1')));
}

} // namespace lumora
