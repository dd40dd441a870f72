#include "reading/Spreadsheet.h"

#include "Failure.h"

#include <QLocale>
#include <QRegularExpression>
#include <QStringList>

#include <orcus/orcus_xlsx.hpp>
#include <orcus/spreadsheet/import_interface.hpp>
#include <orcus/zip_archive.hpp>
#include <orcus/zip_archive_stream.hpp>

#include <cmath>
#include <deque>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

namespace sheets = orcus::spreadsheet;

constexpr char fieldSign = '\t';

QByteArray bytesOf(std::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

// Digits that a count and an instant can be read from, too; no exponent where there need not be one.
QByteArray numberText(double number)
{
    constexpr double mostWhole = 1e15;
    const bool isWhole = std::floor(number) == number && std::abs(number) < mostWhole;
    return isWhole ? QByteArray::number(number, 'f', 0)
                   : QString::number(number, 'g', QLocale::FloatingPointShortest).toUtf8();
}

// A field of a line: a line is a row, whatever a cell holds.
QByteArray fieldText(QByteArray cell)
{
    cell.replace("\r\n", " ").replace('\n', ' ').replace('\r', ' ');
    if (!cell.contains(fieldSign) && !cell.startsWith('"') && !cell.contains('"')) {
        return cell;
    }
    return '"' + cell.replace('"', "\"\"") + '"';
}

// The texts that cells refer to by number.
class Texts : public sheets::iface::import_shared_strings
{
public:
    size_t append(std::string_view text) override
    {
        m_texts.push_back(bytesOf(text));
        return m_texts.size() - 1;
    }
    size_t add(std::string_view text) override { return append(text); }
    void append_segment(std::string_view text) override { m_segments += bytesOf(text); }
    size_t commit_segments() override
    {
        m_texts.push_back(m_segments);
        m_segments.clear();
        return m_texts.size() - 1;
    }
    void set_segment_font(size_t /*font*/) override {}
    void set_segment_bold(bool /*isBold*/) override {}
    void set_segment_italic(bool /*isItalic*/) override {}
    void set_segment_font_name(std::string_view /*name*/) override {}
    void set_segment_font_size(double /*size*/) override {}
    void set_segment_font_color(sheets::color_elem_t /*alpha*/, sheets::color_elem_t /*red*/,
                                sheets::color_elem_t /*green*/, sheets::color_elem_t /*blue*/) override
    {
    }

    QByteArray at(size_t index) const { return index < m_texts.size() ? m_texts[index] : QByteArray(); }

private:
    std::vector<QByteArray> m_texts;
    QByteArray m_segments;
};

// What cells of a sheet hold, as text.
class Cells
{
public:
    void set(sheets::row_t row, sheets::col_t column, const QByteArray& text)
    {
        if (text.isEmpty()) {
            return;
        }
        const auto rowIndex = static_cast<size_t>(row);
        const auto columnIndex = static_cast<size_t>(column);
        if (m_rows.size() <= rowIndex) {
            m_rows.resize(rowIndex + 1);
        }
        if (m_rows[rowIndex].size() <= columnIndex) {
            m_rows[rowIndex].resize(columnIndex + 1);
        }
        m_rows[rowIndex][columnIndex] = text;
        m_width = std::max(m_width, columnIndex + 1);
    }

    bool isEmpty() const { return m_rows.empty(); }

    QByteArray text() const
    {
        QByteArray text;
        for (const std::vector<QByteArray>& row : m_rows) {
            for (size_t column = 0; !row.empty() && column < m_width; ++column) {
                text += column > 0 ? QByteArray(1, fieldSign) : QByteArray();
                text += column < row.size() ? fieldText(row[column]) : QByteArray();
            }
            text += '\n';
        }
        return text;
    }

private:
    std::vector<std::vector<QByteArray>> m_rows;
    size_t m_width = 0;
};

// Takes the value that a formula had when the file was saved.
class FormulaResults : public sheets::iface::import_formula
{
public:
    explicit FormulaResults(Cells& cells) : m_cells(cells) {}

    void set_position(sheets::row_t row, sheets::col_t column) override
    {
        m_row = row;
        m_column = column;
    }
    void set_formula(sheets::formula_grammar_t /*grammar*/, std::string_view /*formula*/) override {}
    void set_shared_formula_index(size_t /*index*/) override {}
    void set_result_value(double value) override { m_cells.set(m_row, m_column, numberText(value)); }
    void set_result_string(std::string_view value) override { m_cells.set(m_row, m_column, bytesOf(value)); }
    void set_result_bool(bool value) override { m_cells.set(m_row, m_column, value ? "TRUE" : "FALSE"); }
    void set_result_empty() override {}
    void commit() override {}

private:
    Cells& m_cells;
    sheets::row_t m_row = 0;
    sheets::col_t m_column = 0;
};

// The same of formulas that fill several cells.
class ArrayResults : public sheets::iface::import_array_formula
{
public:
    explicit ArrayResults(Cells& cells) : m_cells(cells) {}

    void set_range(const sheets::range_t& range) override { m_first = range.first; }
    void set_formula(sheets::formula_grammar_t /*grammar*/, std::string_view /*formula*/) override {}
    void set_result_value(sheets::row_t row, sheets::col_t column, double value) override
    {
        set(row, column, numberText(value));
    }
    void set_result_string(sheets::row_t row, sheets::col_t column, std::string_view value) override
    {
        set(row, column, bytesOf(value));
    }
    void set_result_bool(sheets::row_t row, sheets::col_t column, bool value) override
    {
        set(row, column, value ? "TRUE" : "FALSE");
    }
    void set_result_empty(sheets::row_t /*row*/, sheets::col_t /*column*/) override {}
    void commit() override {}

private:
    // Rows and columns are those of the range.
    void set(sheets::row_t row, sheets::col_t column, const QByteArray& text)
    {
        m_cells.set(m_first.row + row, m_first.column + column, text);
    }

    Cells& m_cells;
    sheets::address_t m_first{0, 0};
};

class SheetCells : public sheets::iface::import_sheet
{
public:
    SheetCells(QString name, const Texts& texts)
        : m_name(std::move(name)), m_texts(texts), m_results(m_cells), m_arrayResults(m_cells)
    {
    }

    const QString& name() const { return m_name; }
    const Cells& cells() const { return m_cells; }

    sheets::iface::import_formula* get_formula() override { return &m_results; }
    sheets::iface::import_array_formula* get_array_formula() override { return &m_arrayResults; }
    void set_auto(sheets::row_t row, sheets::col_t column, std::string_view text) override
    {
        m_cells.set(row, column, bytesOf(text));
    }
    void set_string(sheets::row_t row, sheets::col_t column, sheets::string_id_t index) override
    {
        m_cells.set(row, column, m_texts.at(index));
    }
    void set_value(sheets::row_t row, sheets::col_t column, double value) override
    {
        m_cells.set(row, column, numberText(value));
    }
    void set_bool(sheets::row_t row, sheets::col_t column, bool value) override
    {
        m_cells.set(row, column, value ? "TRUE" : "FALSE");
    }
    void set_date_time(sheets::row_t row, sheets::col_t column, int year, int month, int day, int hour,
                       int minute, double second) override
    {
        const QDate date(year, month, day);
        const auto milliseconds = static_cast<int>(std::round(second * 1000.0));
        const QTime clock = QTime(hour, minute).addMSecs(milliseconds);
        m_cells.set(
            row, column,
            QDateTime(date, clock, Qt::UTC).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")).toUtf8());
    }
    void set_format(sheets::row_t /*row*/, sheets::col_t /*column*/, size_t /*format*/) override {}
    void set_format(sheets::row_t /*firstRow*/, sheets::col_t /*firstColumn*/, sheets::row_t /*lastRow*/,
                    sheets::col_t /*lastColumn*/, size_t /*format*/) override
    {
    }
    void fill_down_cells(sheets::row_t /*row*/, sheets::col_t /*column*/, sheets::row_t /*count*/) override {}
    sheets::range_size_t get_sheet_size() const override
    {
        return {std::numeric_limits<sheets::row_t>::max(), std::numeric_limits<sheets::col_t>::max()};
    }

private:
    QString m_name;
    const Texts& m_texts;
    Cells m_cells;
    FormulaResults m_results;
    ArrayResults m_arrayResults;
};

// Where a reference such as "AB12" points; what goes beyond any sheet is refused.
class References : public sheets::iface::import_reference_resolver
{
public:
    sheets::src_address_t resolve_address(std::string_view text) override
    {
        size_t index = 0;
        sheets::src_address_t address{0, 0, 0};
        for (;
             index < text.size() && text[index] >= 'A' && text[index] <= 'Z' && address.column <= mostColumns;
             ++index) {
            address.column = address.column * letters + (text[index] - 'A' + 1);
        }
        for (; index < text.size() && text[index] >= '0' && text[index] <= '9' && address.row <= mostRows;
             ++index) {
            address.row = address.row * 10 + (text[index] - '0');
        }
        const bool isOnSheet = index == text.size() && address.column > 0 && address.column <= mostColumns &&
                               address.row > 0 && address.row <= mostRows;
        if (!isOnSheet) {
            throw std::invalid_argument("a cell is at no place of a sheet");
        }
        return {0, address.row - 1, address.column - 1};
    }

    sheets::src_range_t resolve_range(std::string_view text) override
    {
        const size_t colon = text.find(':');
        const sheets::src_address_t first = resolve_address(text.substr(0, colon));
        return {first, colon == std::string_view::npos ? first : resolve_address(text.substr(colon + 1))};
    }

private:
    static constexpr int letters = 26;
    static constexpr sheets::col_t mostColumns = 16'384;
    static constexpr sheets::row_t mostRows = 1'048'576;
};

class Settings : public sheets::iface::import_global_settings
{
public:
    void set_origin_date(int /*year*/, int /*month*/, int /*day*/) override {}
    void set_default_formula_grammar(sheets::formula_grammar_t grammar) override { m_grammar = grammar; }
    sheets::formula_grammar_t get_default_formula_grammar() const override { return m_grammar; }
    void set_character_set(orcus::character_set_t /*characters*/) override {}

private:
    sheets::formula_grammar_t m_grammar = sheets::formula_grammar_t::unknown;
};

// Takes what the reader finds in a workbook.
class Workbook : public sheets::iface::import_factory
{
public:
    const std::deque<SheetCells>& sheetsOfIt() const { return m_sheets; }

    sheets::iface::import_global_settings* get_global_settings() override { return &m_settings; }
    sheets::iface::import_shared_strings* get_shared_strings() override { return &m_texts; }
    sheets::iface::import_reference_resolver*
    get_reference_resolver(sheets::formula_ref_context_t /*context*/) override
    {
        return &m_references;
    }
    sheets::iface::import_sheet* append_sheet(sheets::sheet_t /*index*/, std::string_view name) override
    {
        return &m_sheets.emplace_back(QString::fromUtf8(bytesOf(name)), m_texts);
    }
    sheets::iface::import_sheet* get_sheet(std::string_view name) override
    {
        for (SheetCells& sheet : m_sheets) {
            if (sheet.name() == QString::fromUtf8(bytesOf(name))) {
                return &sheet;
            }
        }
        return nullptr;
    }
    sheets::iface::import_sheet* get_sheet(sheets::sheet_t index) override
    {
        const auto place = static_cast<size_t>(index);
        return index >= 0 && place < m_sheets.size() ? &m_sheets[place] : nullptr;
    }
    void finalize() override {}

private:
    Settings m_settings;
    Texts m_texts;
    References m_references;
    std::deque<SheetCells> m_sheets; // does not move what it holds
};

const SheetCells& sheetOf(const QString& path, const Workbook& workbook, const QString& name)
{
    QStringList names;
    const SheetCells* found = nullptr;
    for (const SheetCells& sheet : workbook.sheetsOfIt()) {
        if (name.isEmpty() ? !sheet.cells().isEmpty() : sheet.name() == name) {
            found = &sheet;
            names.append(sheet.name());
        }
    }
    if (found == nullptr) {
        throw Failure(FailureKind::BadInput,
                      name.isEmpty() ? QStringLiteral("%1: no sheet holds anything").arg(path)
                                     : QStringLiteral("%1: there is no sheet \"%2\"").arg(path, name));
    }
    if (names.size() > 1) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: several sheets hold something: \"%2\"; say which sheet it is")
                          .arg(path, names.join(QStringLiteral("\", \""))));
    }
    return *found;
}

// The files that a spreadsheet consists of, for what its reader does not tell.
class Archive
{
public:
    explicit Archive(const QByteArray& content)
        : m_stream(reinterpret_cast<const unsigned char*>(content.constData()),
                   static_cast<size_t>(content.size())),
          m_archive(&m_stream)
    {
        m_archive.load();
    }

    // How days are counted; both ways where the workbook is not where it is as a rule.
    QList<TimeFormat> days() const
    {
        const QByteArray workbook = entry("xl/workbook.xml");
        static const QRegularExpression second(QStringLiteral("date1904\\s*=\\s*[\"'](1|true|on)[\"']"));
        if (workbook.isEmpty()) {
            return {TimeFormat::Excel1900, TimeFormat::Excel1904};
        }
        const bool is1904 = second.match(QString::fromUtf8(workbook)).hasMatch();
        return {is1904 ? TimeFormat::Excel1904 : TimeFormat::Excel1900};
    }

    // Whether there are texts that the reader would lose: those within cells, and those with their
    // pronunciation, of which it would take that.
    bool holdsOtherTexts() const
    {
        for (size_t index = 0; index < m_archive.get_file_entry_count(); ++index) {
            const std::string_view name = m_archive.get_file_entry_name(index);
            const bool isSheet = name.find("worksheets/") != std::string_view::npos;
            const bool isTexts = name.find("sharedStrings") != std::string_view::npos;
            if ((isSheet && entry(name).contains("inlineStr")) || (isTexts && entry(name).contains("<rPh"))) {
                return true;
            }
        }
        return false;
    }

private:
    QByteArray entry(std::string_view name) const
    {
        std::vector<unsigned char> bytes;
        const bool isThere = m_archive.read_file_entry(name, bytes);
        return isThere
                   ? QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()))
                   : QByteArray();
    }

    orcus::zip_archive_stream_blob m_stream;
    orcus::zip_archive m_archive;
};

} // namespace

bool isSpreadsheet(const QByteArray& content)
{
    return content.startsWith("PK\x03\x04");
}

SheetText readSheet(const QString& path, const QByteArray& content, const QString& sheet)
{
    Workbook workbook;
    QList<TimeFormat> days;
    bool isWhole = true;
    try {
        const Archive archive(content);
        days = archive.days();
        isWhole = !archive.holdsOtherTexts();
        orcus::orcus_xlsx reader(&workbook);
        reader.read_stream(std::string_view(content.constData(), static_cast<size_t>(content.size())));
    } catch (const std::exception& error) {
        throw Failure(FailureKind::BadInput, QStringLiteral("%1: no spreadsheet (.xlsx) that can be read: %2")
                                                 .arg(path, QString::fromUtf8(error.what())));
    }
    if (!isWhole) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("%1: it holds texts within its cells, or with their pronunciation, which "
                           "cannot be read; save its sheet as CSV")
                .arg(path));
    }
    return {sheetOf(path, workbook, sheet).cells().text(), days};
}
