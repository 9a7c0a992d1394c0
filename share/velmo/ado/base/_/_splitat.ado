*! version 1.0.0  22nov2026
* _splitat mark text: leaves with the caller what stands ahead of the first such mark (`:' or `,') that is in no quotes
* or parentheses, as before, what stands behind it, as behind, and whether there is one, as found
program define _splitat
	version 7.0
	gettoken mark rest : 0
	local depth 0
	while _local(rest) != "" {
		local blank = cond(substr(_local(rest), 1, 1) == " ", " ", "")
		gettoken token rest : rest, parse(" `mark'()[]=<>~!&|+-*/^") quotes
		if _local(token) == "`mark'" & `depth' == 0 {
			c_local before : local head
			c_local behind : local rest
			c_local found 1
			exit
		}
		local depth = `depth'+inlist(_local(token), "(", "[")-inlist(_local(token), ")", "]")
		foreach text in head token {
			local `text' : escaped `text'
		}
		local head `"`head'`blank'`token'"'
	}
	c_local before : local head
	c_local behind
	c_local found 0
end
