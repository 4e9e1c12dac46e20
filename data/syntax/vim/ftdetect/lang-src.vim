autocmd BufRead,BufNewFile *.lang-src setfiletype lang-src
