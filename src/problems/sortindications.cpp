#include "problems/sortindications.h"

#include "chess/exception.h"
#include "chess/movetext.h"
#include "problems/lexer.h"

#include <algorithm>
#include <charconv>

namespace corvina
{
namespace
{

constexpr std::string_view SEPARATORS = ":>-";

bool IsSeparator(char c)
{
    return SEPARATORS.find(c) != std::string_view::npos;
}

/// Reads one item from the front to the back.
class CItemReader
{
public:
    explicit CItemReader(std::string_view strItem) : m_strItem(strItem), m_strRest(strItem) {}

    TSortIndication Read()
    {
        if (m_strItem.empty())
            throw ChessException("Invalid description of SortIndication");
        m_item.m_bNegated = Skip("~");
        SkipBlanks();
        ReadMoveNumber();
        SkipBlanks();
        if (m_strRest.starts_with("0"))
            ReadCastling();
        else
            ReadMove();
        m_item.m_bStar = Skip("*");
        while (m_item.m_nCheck < 2 && Skip("+"))
            ++m_item.m_nCheck;
        if (!m_strRest.empty())
            throw ChessException("Move description too long (note that moves should be separated "
                                 "with a comma or semicolon)");
        return m_item;
    }

private:
    [[noreturn]] void ThrowInvalid() const
    {
        throw ChessException("Invalid description of SortIndication: " + std::string(m_strItem));
    }

    bool Skip(std::string_view strText)
    {
        if (!m_strRest.starts_with(strText))
            return false;
        m_strRest.remove_prefix(strText.size());
        return true;
    }

    void SkipBlanks()
    {
        m_strRest.remove_prefix(std::min(m_strRest.find_first_not_of(" \t"), m_strRest.size()));
    }

    void ReadMoveNumber()
    {
        const auto nDigits = std::min(m_strRest.find_first_not_of("0123456789"), m_strRest.size());
        if (nDigits == 0 || nDigits == m_strRest.size() || m_strRest[nDigits] != '.')
            return;
        const char* pBegin = m_strRest.data();
        if (std::from_chars(pBegin, pBegin + nDigits, m_item.m_nMoveNumber).ec != std::errc())
            ThrowInvalid();
        m_strRest.remove_prefix(nDigits + 1);
    }

    void ReadCastling()
    {
        const bool bLong = Skip("0-0-0");
        if (!bLong && !Skip("0-0"))
            ThrowInvalid();
        using K = TCastling<EColour::White>;
        m_item.m_figure = WHITE_KING;
        m_item.m_from = K::KING;
        m_item.m_to = bLong ? K::LONG_TO : K::SHORT_TO;
    }

    void ReadMove()
    {
        const bool bFigure =
            m_strRest.size() >= 2 && IsLetter(m_strRest[0]) && !IsDigit(m_strRest[1]);
        if (bFigure) {
            m_item.m_figure = COLOUR_WHITE | FigureFromLetter(m_strRest[0]);
            m_strRest.remove_prefix(1);
        }
        // Without a separator further on the square that comes is the destination.
        if (m_strRest.find_first_of(SEPARATORS) != std::string_view::npos &&
            !IsSeparator(m_strRest.front()))
            m_item.m_from = ReadSquare();
        ReadSeparator();
        m_item.m_to = ReadSquare();
        if (!m_strRest.empty() && IsLetter(m_strRest.front())) {
            m_item.m_promotion = FigureFromLetter(m_strRest.front());
            if (!IsPromotionKind(m_item.m_promotion))
                ThrowInvalid();
            m_strRest.remove_prefix(1);
        }
    }

    void ReadSeparator()
    {
        if (Skip(":"))
            m_item.m_capture = TSortIndication::CAPTURE;
        else if (Skip(">"))
            m_item.m_capture = TSortIndication::NO_CAPTURE;
        else
            Skip("-");
    }

    TSquare ReadSquare()
    {
        const TSquare square = SquareAt(m_strRest, 0);
        if (square == NO_SQUARE)
            ThrowInvalid();
        m_strRest.remove_prefix(2);
        return square;
    }

    std::string_view m_strItem;
    std::string_view m_strRest;
    TSortIndication m_item;
};

std::string ItemToText(const TSortIndication& item)
{
    std::string strText = item.m_bNegated ? "~" : "";
    if (item.m_nMoveNumber != 0)
        strText += std::to_string(item.m_nMoveNumber) + ".";
    if (item.m_figure != NO_FIGURE)
        strText += item.m_figure == WHITE_PAWN                ? 'p'
                   : (item.m_figure & KIND_MASK) == KIND_PAWN ? ' '
                                                              : LetterFromFigure(item.m_figure);
    if (item.m_from != NO_SQUARE)
        strText += SquareText(item.m_from);
    if (item.m_capture == TSortIndication::CAPTURE)
        strText += ':';
    else if (item.m_capture == TSortIndication::NO_CAPTURE)
        strText += '>';
    else if (item.m_from != NO_SQUARE)
        strText += '-';
    strText += SquareText(item.m_to);
    if (item.m_promotion != NO_FIGURE)
        strText += LetterFromFigure(item.m_promotion);
    return strText + std::string(item.m_nCheck, '+');
}

} // namespace

void TSortIndications::Add(const TSortIndication& item)
{
    m_mapItems[item.m_nMoveNumber].push_back(item);
    m_bHasGeneralItem |= item.m_nMoveNumber == 0;
    m_nLongestDescription = std::max(m_nLongestDescription, CountPatternLetters(item.m_strPattern));
}

int CountPatternLetters(std::string_view strPattern)
{
    return static_cast<int>(std::count_if(strPattern.begin(), strPattern.end(), IsLetter));
}

TSortIndication ParseSortIndication(std::string_view strText)
{
    return CItemReader(TrimBlanks(strText)).Read();
}

void ParseSortIndications(TSortIndications& target, std::string_view strText,
                          std::size_t* pnPosition)
{
    const char* const pBegin = strText.data();
    const char separator = strText.find(',') != std::string_view::npos ? ',' : ';';
    while (true) {
        const std::size_t nEnd = std::min(strText.find(separator), strText.size());
        const std::string_view strItem = TrimBlanks(strText.substr(0, nEnd));
        if (pnPosition)
            *pnPosition = static_cast<std::size_t>(strItem.data() - pBegin);
        target.Add(ParseSortIndication(strItem));
        if (nEnd == strText.size())
            return;
        strText.remove_prefix(nEnd + 1);
    }
}

std::string SortIndicationsToText(const TSortIndications& indications)
{
    std::string strText;
    for (const auto& [nMoveNumber, vecItems] : indications.m_mapItems) {
        for (const TSortIndication& item : vecItems)
            strText += (strText.empty() ? "" : "; ") + ItemToText(item);
    }
    return strText;
}

} // namespace corvina
