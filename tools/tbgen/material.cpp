// Row names to materials and materials to rows, lists and indices.

#include "tbgen/material.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "tablebase/index.h"

namespace tbgen {

namespace {

// Letters of a row name from the strongest piece down, and the type each
// stands for (a pawn's colour follows its side).
constexpr char NameOrder[] = "qrbnp";
constexpr int TypeOfLetter[] = {board::Queen, board::Rook, board::Bishop, board::Knight, board::WhitePawn};

int letterOf(int type) {
    switch (type) {
        case board::Queen: return 'q';
        case board::Rook: return 'r';
        case board::Bishop: return 'b';
        case board::Knight: return 'n';
        default: return 'p';
    }
}

// A type's first place in a piece list; more men of the type take the next.
int firstPlace(int type) {
    switch (type) {
        case board::King: return 0;
        case board::Queen: return tablebase::TbQueenPlace;
        case board::Rook: return tablebase::TbRookPlace;
        case board::Bishop: return tablebase::TbBishopPlace;
        case board::Knight: return tablebase::TbKnightPlace;
        default: return tablebase::TbPawnPlace;
    }
}

// One side's letters, strongest first, as a row name writes them.
void sideLetters(const Material& material, int colour, char* out) {
    int n = 0;
    for (const char letter : std::string_view(NameOrder))
        for (int m = 0; m < material.count; ++m)
            if (material.men[m].colour == colour && material.men[m].type != board::King &&
                letterOf(material.men[m].type) == letter)
                out[n++] = letter;
    out[n] = '\0';
}

}  // namespace

bool materialOfRow(int rowId, Material& out) {
    return rowId > 0 && rowId < tablebase::TbRowCount && materialOfName(tablebase::tbRowName(rowId), out);
}

bool materialOfName(const char* name, Material& out) {
    if (name == nullptr || name[0] != 'k') return false;
    out = Material{};
    out.men[0] = Man{board::King, board::White};
    out.men[1] = Man{board::King, board::Black};
    out.count = 2;
    int colour = board::White;
    for (const char* c = name + 1; *c != '\0'; ++c) {
        if (*c == 'k') {
            colour = board::Black;
            continue;
        }
        const char* letter = std::strchr(NameOrder, *c);
        if (letter == nullptr || out.count == MaxMen) return false;
        int type = TypeOfLetter[letter - NameOrder];
        if (type == board::WhitePawn && colour == board::Black) type = board::BlackPawn;
        out.men[out.count++] = Man{std::int8_t(type), std::int8_t(colour)};
    }
    out.king[board::White] = 0;
    out.king[board::Black] = 1;
    return colour == board::Black;
}

bool mapMaterial(const Material& material, TableMap& out) {
    out = TableMap{};
    char white[MaxMen + 1], black[MaxMen + 1];
    sideLetters(material, board::White, white);
    sideLetters(material, board::Black, black);
    if (white[0] == '\0' && black[0] == '\0') return true;
    char name[2 * MaxMen + 3];
    int firstColour = board::White;
    std::snprintf(name, sizeof name, "k%sk%s", white, black);
    out.rowId = tablebase::tbRowId(name);
    // Equal sides are stored once, and read with the first side Black.
    if (out.rowId == 0 || std::strcmp(white, black) == 0) {
        std::snprintf(name, sizeof name, "k%sk%s", black, white);
        out.rowId = tablebase::tbRowId(name);
        firstColour = board::Black;
    }
    if (out.rowId == 0) return false;
    out.swapped = firstColour == board::Black;
    int used[2][tablebase::TbListSize] = {};
    for (int m = 0; m < material.count; ++m) {
        const int list = material.men[m].colour == firstColour ? 0 : 1;
        int place = firstPlace(material.men[m].type);
        while (used[list][place]) ++place;
        used[list][place] = 1;
        out.list[m] = std::int8_t(list);
        out.place[m] = std::int8_t(place);
    }
    return true;
}

std::uint32_t tableIndex(const TableMap& map, const Material& material, const int* squares, int stm, int epSquare) {
    tablebase::TbPieceList lists[2];
    std::fill(&lists[0][0], &lists[0][0] + 2 * tablebase::TbListSize, -1);
    for (int m = 0; m < material.count; ++m) lists[map.list[m]][map.place[m]] = squares[m];
    return tablebase::tbIndexOf(map.rowId, tableSide(map, stm), lists[0], lists[1], epSquare, map.swapped);
}

bool makeExit(const Material& material, int captured, int promoted, int type, Exit& out) {
    out = Exit{};
    if (material.count > MaxMen) return false;
    for (int m = 0; m < material.count; ++m) {
        if (m == captured) {
            out.newMan[m] = NoMan;
            continue;
        }
        Man man = material.men[m];
        if (m == promoted) man.type = std::int8_t(type);
        if (man.type == board::King) out.material.king[man.colour] = out.material.count;
        out.newMan[m] = std::int8_t(out.material.count);
        out.material.men[out.material.count++] = man;
    }
    return mapMaterial(out.material, out.map);
}

std::vector<int> exitRows(const Material& material) {
    std::vector<int> rows;
    auto note = [&](int captured, int promoted, int type) {
        Exit exit;
        if (makeExit(material, captured, promoted, type, exit) && exit.map.rowId != 0 &&
            std::find(rows.begin(), rows.end(), exit.map.rowId) == rows.end())
            rows.push_back(exit.map.rowId);
    };
    for (int promoted = NoMan; promoted < material.count; ++promoted) {
        const bool pawn = promoted != NoMan && (material.men[promoted].type == board::WhitePawn ||
                                                material.men[promoted].type == board::BlackPawn);
        if (promoted != NoMan && !pawn) continue;
        for (int captured = NoMan; captured < material.count; ++captured) {
            if (captured != NoMan && (material.men[captured].type == board::King ||
                                      (promoted != NoMan && material.men[captured].colour == material.men[promoted].colour)))
                continue;
            if (promoted == NoMan && captured == NoMan) continue;
            if (promoted == NoMan)
                note(captured, NoMan, board::NoType);
            else
                for (int type : {board::Queen, board::Rook, board::Bishop, board::Knight}) note(captured, promoted, type);
        }
    }
    return rows;
}

}  // namespace tbgen
