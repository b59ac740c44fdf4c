// Reads a golden table: comma-separated rows, whose first fields name the case and whose others are features.
#pragma once

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

// nameFields: how many fields name a case. Lines with '#' and the first other line, which names the columns,
// are passed over.
inline std::map<std::string, std::vector<double>> readGolden(const std::string& file, int nameFields) {
    std::map<std::string, std::vector<double>> rows;
    std::ifstream in(std::string(GOLDEN_FOLDER "/") + file);
    EXPECT_TRUE(in.is_open()) << file;
    bool isPastColumnNames = false;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (!std::exchange(isPastColumnNames, true)) continue;
        std::size_t end = 0;
        for (int field = 0; field < nameFields; ++field)
            end = line.find(',', end) + 1;
        std::vector<double>& row = rows[line.substr(0, end - 1)];
        std::istringstream values(line.substr(end));
        for (std::string field; std::getline(values, field, ',');)
            row.push_back(std::stod(field));
    }
    return rows;
}
