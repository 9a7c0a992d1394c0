*! version 1.0.0  22nov2026
* _tablefile: a table as a file, for programs. The ending of the name says what kind: .csv, .html, .tex or .md.
*   _tablefile check name[, replace]     leaves tablename, tablekind, tablereplace to the caller; 198 else
*   _tablefile begin handle kind columns                  the caller opens and closes the file
*   _tablefile head|row handle kind "cell" "cell" ...       the first column is of texts, the others are set to the right
*   _tablefile rule|end handle kind
* Cells are texts, at most 244 bytes each; what means something in the kind of file is escaped.
program define _tablefile
	version 7.0
	gettoken what 0 : 0
	if "`what'" == "check" {
		Check `0'
		c_local tablename `"`name'"'
		c_local tablekind `kind'
		c_local tablereplace `replace'
		exit
	}
	gettoken handle 0 : 0
	gettoken kind 0 : 0
	if "`what'" == "begin" {
		local columns : word 1 of `0'
		if "`kind'" == "html" {
			file write `handle' "<table>" _n
		}
		else if "`kind'" == "tex" {
			local right = substr("rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr", 1, `columns'-1)
			file write `handle' "\begin{tabular}{l`right'}" _n "\hline" _n
		}
	}
	else if "`what'" == "rule" {
		if "`kind'" == "tex" {
			file write `handle' "\hline" _n
		}
	}
	else if "`what'" == "end" {
		if "`kind'" == "html" {
			file write `handle' "</table>" _n
		}
		else if "`kind'" == "tex" {
			file write `handle' "\hline" _n "\end{tabular}" _n
		}
	}
	else {
		Row `what' `handle' `kind' `0'
	}
end

program define Check
	gettoken name 0 : 0, parse(",")
	local 0 : local 0
	syntax [, REPLACE]
	local kind
	foreach ending in csv html tex md {
		local n = length("`ending'") + 1
		if substr(`"`name'"', -`n', .) == ".`ending'" {
			local kind `ending'
		}
	}
	if "`kind'" == "" {
		display as error "saving() takes a name that ends in .csv, .html, .tex or .md"
		exit 198
	}
	c_local name `"`name'"'
	c_local kind `kind'
	c_local replace `replace'
end

program define Row
	gettoken what 0 : 0
	gettoken handle 0 : 0
	gettoken kind 0 : 0
	local tag = cond("`what'" == "head", "th", "td")
	local k 0
	while _local(0) != "" {
		gettoken cell 0 : 0
		local k = `k' + 1
		local cell : escaped cell
		Escape `kind' `"`cell'"'
		if "`kind'" == "csv" {
			file write `handle' (cond(`k' > 1, ",", "")) (_local(cell))
		}
		else if "`kind'" == "html" {
			local align = cond(`k' > 1, " align=" + char(34) + "right" + char(34), "")
			file write `handle' (cond(`k' > 1, "", "<tr>")) "<`tag'" (_local(align)) ">" (_local(cell)) "</`tag'>"
		}
		else if "`kind'" == "tex" {
			file write `handle' (cond(`k' > 1, " & ", "")) (_local(cell))
		}
		else {
			file write `handle' (cond(`k' > 1, " ", "| ")) (_local(cell)) " |"
		}
	}
	if "`kind'" == "html" {
		file write `handle' "</tr>"
	}
	else if "`kind'" == "tex" {
		file write `handle' (" " + char(92) + char(92))
	}
	file write `handle' _n
	if "`kind'" == "md" & "`what'" == "head" {
		file write `handle' "|---|"
		forvalues i = 2/`k' {
			file write `handle' "---:|"
		}
		file write `handle' _n
	}
end

* The cell as that kind of file has it, into the local cell of the caller.
program define Escape
	args kind cell
	if "`kind'" == "csv" {
		if index(_local(cell), ",") | index(_local(cell), char(34)) {
			local cell = char(34) + subinstr(_local(cell), char(34), char(34)+char(34), .) + char(34)
		}
	}
	else if "`kind'" == "html" {
		local cell = subinstr(_local(cell), "&", "&amp;", .)
		local cell = subinstr(subinstr(_local(cell), "<", "&lt;", .), ">", "&gt;", .)
	}
	else if "`kind'" == "md" {
		local cell = subinstr(_local(cell), char(92), char(92)+char(92), .)
		local cell = subinstr(subinstr(_local(cell), "|", char(92)+"|", .), "<", "&lt;", .)
	}
	else {
		local cell = subinstr(_local(cell), char(92), char(1), .)
		foreach code in 35 36 37 38 95 123 125 {
			local cell = subinstr(_local(cell), char(`code'), char(92)+char(`code'), .)
		}
		local cell = subinstr(_local(cell), "~", char(92)+"textasciitilde{}", .)
		local cell = subinstr(_local(cell), "^", char(92)+"textasciicircum{}", .)
		local cell = subinstr(_local(cell), char(1), char(92)+"textbackslash{}", .)
	}
	local cell : escaped cell
	c_local cell `"`cell'"'
end
