// The 71 commands in registration order.
// Knows the commands of every room by their headers.
#include "module/commandtable.h"

#include "aids/duplicates.h"
#include "contour/approximation.h"
#include "exchange/simulation.h"
#include "output3b/programwriter.h"
#include "outputiso/driver.h"
#include "outputiso/programtools.h"
#include "pathcmd/autofix.h"
#include "pathcmd/edges.h"
#include "pathcmd/editcommands.h"
#include "pathcmd/jobs.h"
#include "pathcmd/makepath.h"
#include "pathcmd/showcommands.h"
#include "pathcmd/smallcommands.h"

namespace tarnex {

namespace {

void doesNothing(Module&) {}  // a name that older menus still send

// Modal, transparent, transparent with the pick set.
constexpr int kModal = 0, kTransparent = 1, kPickSet = 3;

constexpr CommandRow kRows[] = {
    {"NC", "NC", kModal, &NC},
    {"TCF", "TCF", kModal, &TCF},
    {"TK", "TK", kModal, nullptr},
    {"AC", "AC", kModal, &AC},
    {"AF", "AF", kModal, &AF},
    {"BP", "BP", kModal, &BP},
    {"BM", "BM", kModal, &BM},
    {"BK", "BK", kModal, &BK},
    {"BB", "BB", kModal, &BB},
    {"GK", "GK", kModal, &GK},
    {"GG", "GG", kModal, &GG},
    {"GA", "GA", kModal, &GA},
    {"GT", "GT", kModal, &GT},
    {"CD", "CD", kModal, &CD},
    {"CM", "CM", kModal, &CM},
    {"CS", "CS", kModal, &CS},
    {"CX", "CX", kModal, &CX},
    {"DB", "DB", kModal, &DB},
    {"QQ", "QQ", kModal, &QQ},
    {"XD", "XD", kModal, &XD},
    {"XD0", "XD0", kModal, &XD0},
    {"SR", "SR", kModal, &SR},
    {"SR0", "SR0", kModal, &SR0},
    {"HZ", "HZ", kModal, nullptr},
    {"s2p", "s2p", kModal, &s2p},
    {"e2p", "e2p", kModal, &e2p},
    {"DD", "DD", kModal, nullptr},
    {"AO", "AO", kModal, nullptr},
    {"AI", "AI", kModal, nullptr},
    {"Vorn", "Vorn", kModal, &Vorn},
    {"SIM", "SIM", kModal, &SIM},
    {"JX", "JX", kModal, &JX},
    {"3BIN", "3BIN", kModal, nullptr},
    {"QD", "QD", kModal, &QD},
    {"ZD", "ZD", kModal, &ZD},
    {"QZ", "QZ", kModal, &QZ},
    {"GY", "GY", kModal, &GY},
    {"JG", "JG", kModal, nullptr},
    {"JGB", "JGB", kModal, nullptr},
    {"CL", "CL", kModal, nullptr},
    {"BZ", "BZ", kModal, nullptr},
    {"WZ", "WZ", kModal, &WZ},
    {"PrintMoney", "PrintMoney", kModal, &doesNothing},
    {"D1", "D1", kModal, nullptr},
    {"SXY", "SXY", kModal, nullptr},
    {"USERVAR", "USERVAR", kModal, &USERVAR},
    {"TTT", "TTT", kModal, &TTT},
    {"P2C", "P2C", kModal, nullptr},
    {"SV", "SV", kModal, &SV},
    {"L1", "L1", kModal, nullptr},
    {"kk", "oo", kTransparent, nullptr},
    {"gg", "cc", kTransparent, nullptr},
    {"k1", "o1", kTransparent, nullptr},
    {"g1", "c1", kTransparent, nullptr},
    {"k2", "o2", kTransparent, nullptr},
    {"g2", "c2", kTransparent, nullptr},
    {"sw", "et", kTransparent, nullptr},
    {"sb", "ed", kTransparent, nullptr},
    {"sy1", "ec1", kTransparent, nullptr},
    {"sy", "ec", kTransparent, nullptr},
    {"ls1", "zl", kPickSet, nullptr},
    {"Y", "YY", kPickSet, nullptr},
    {"TT", "TT", kPickSet, nullptr},
    {"scc", "scc", kPickSet, &scc},
    {"RR", "RR", kPickSet, &RR},
    {"AJ", "AJ", kPickSet, &AJ},
    {"AJ1", "AJ1", kPickSet, &AJ1},
    {"ck", "wd", kPickSet, nullptr},
    {"dq", "cv", kPickSet, nullptr},
    {"fx", "sd", kPickSet, &fx},
    {"sx", "ms", kPickSet, nullptr},
};
static_assert(std::size(kRows) == 71);

}  // namespace

std::span<const CommandRow> commandTable() {
  return kRows;
}

}  // namespace tarnex
