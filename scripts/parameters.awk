# Joins a listing of the tree with the descriptions of docs/parameters.md.in and prints docs/parameters.md. The listing is
# read first. Every complaint is printed before the exit status reports one. Kept to what every awk knows:
# no counted repetitions, no functions of a single awk.

function complain(text) {
    print "parameters: " text >"/dev/stderr"
    complaints = 1
}

# A list of one integer is listed as an integer, and a text of digits too.
function has_type(address, type) {
    if (type == "object" || kind[address] == "object" || type == "integer") return type == kind[address]
    if (type == "list of integers") return value[address] ~ /^(-?[0-9]+(, -?[0-9]+)*)?$/
    return type == "string" || type == "list of strings"
}

function matches(address, pattern,    expression) {
    if (pattern !~ /[{]i[}]/) return address == pattern
    expression = pattern
    gsub(/[.]/, "[.]", expression)
    gsub(/[{]i[}]/, "[1-9][0-9]*", expression)
    return address ~ ("^" expression "$")
}

# The instance that an address has where its pattern has {i}.
function instance(address, pattern,    rest) {
    rest = substr(address, index(pattern, "{i}"))
    return substr(rest, 1, index(rest, ".") - 1)
}

function quoted(text) { return text == "" ? "empty" : "`" text "`" }

# Fills found[] with the addresses of a pattern, and settles what holds for all of them.
function find(pattern, type, write,    i, address) {
    found_count = 0
    for (i = 1; i <= address_count; ++i) {
        address = addresses[i]
        if (!matches(address, pattern)) continue
        if (address in described) complain("described twice: " address)
        described[address] = 1
        found[++found_count] = address
        if (!has_type(address, type)) complain(address " is not of type " type ": " kind[address] " " value[address])
        if (writable[address] != (write != "")) {
            complain(address (writable[address] ? " is writable, without the place that it is written to" : " is not writable"))
        }
        if (inform[address] != inform[found[1]]) complain("not in every Inform alike: " pattern)
    }
    if (found_count == 0) complain("described, but not in the tree: " pattern)
}

# The value of a constant comes from the tree, by instance where they differ.
function constant(pattern,    i, text, differ) {
    for (i = 2; i <= found_count; ++i) differ = differ || value[found[i]] != value[found[1]]
    if (!differ) return "constant" (value[found[1]] == "" ? ", " : " ") quoted(value[found[1]])
    for (i = 1; i <= found_count; ++i) {
        text = text (i == 1 ? "constant, " : "; ") instance(found[i], pattern) ": " quoted(value[found[i]])
    }
    return text
}

function start_table(    i) {
    prefix_count = split($0, prefixes, " ") - 1
    for (i = 1; i <= prefix_count; ++i) prefixes[i] = prefixes[i + 1]
    if (prefix_count == 0) prefixes[prefix_count = 1] = ""
    row_count = 0
    in_table = 1
    split("", used)
}

function cell(row, column, text) {
    cells[row, column] = text
    if (text != "") used[column] = 1
}

function add_row(    i, field, pattern, source) {
    if (split($0, field, / *[|] */) != 7 || field[7] == "") {
        complain("not seven fields with a meaning at the end: " $0)
        return
    }
    ++row_count
    for (i = 1; i <= prefix_count; ++i) {
        pattern = prefixes[i] (field[1] == "." ? "" : field[1])
        find(pattern, field[2], field[6])
        source = field[4] == "constant" && found_count ? constant(pattern) : field[4]
        if (i > 1 && source != cells[row_count, 4]) complain("not the same constant everywhere: " pattern)
        cell(row_count, 4, source)
        cell(row_count, 7, found_count && inform[found[1]] ? "yes" : "")
    }
    cell(row_count, 1, field[1] == "." ? "(itself)" : "`" field[1] "`")
    for (i = 2; i <= 6; ++i) if (i != 4) cell(row_count, i, field[i])
    cell(row_count, 8, field[7])
}

function print_line(row, titles, column,    text, line) {
    for (column = 1; column <= 8; ++column) {
        if (!(column in used)) continue
        text = row == 0 ? titles[column] : row < 0 ? "---" : cells[row, column]
        line = line "|" (row < 0 ? text : " " text " ")
    }
    print line "|"
}

# Columns that no row of a table has are left out.
function end_table(    titles, row, text) {
    in_table = 0
    if (prefixes[1] != "") {
        for (row = 1; row <= prefix_count; ++row) text = text (row == 1 ? "" : " and ") "`" prefixes[row] "`"
        print "Below " text ":\n"
    }
    split("Name|Type|Unit|Source|Refreshed|Written to|Inform|Meaning", titles, "|")
    print_line(0, titles)
    print_line(-1, titles)
    for (row = 1; row <= row_count; ++row) print_line(row, titles)
}

FILENAME == ARGV[1] {
    addresses[++address_count] = $1
    writable[$1] = $2 ~ /w/
    inform[$1] = $2 ~ /i/
    kind[$1] = $3
    value[$1] = substr($0, length($1 " " $2 " " $3 " ") + 1)
    next
}
/^\/\// { next }
/^@/ { start_table(); next }
in_table && NF { add_row(); next }
in_table { end_table() }
{ print }

END {
    if (in_table) end_table()
    for (i = 1; i <= address_count; ++i) {
        if (!(addresses[i] in described)) complain("without a description: " addresses[i])
    }
    if (address_count == 0) complain("the listing is empty")
    exit complaints
}
