" Vim syntax file
" Language: language sources of lang (*.lang-src)

if exists('b:current_syntax')
  finish
endif

syntax case ignore
syntax sync minlines=50

syntax keyword langSrcBlock group item lang comment
syntax keyword langSrcStatement define default version create_date whatsnew app colwidth file format
syntax keyword langSrcAttribute description category typ rowheight size ctime mtime visible ready
syntax keyword langSrcAttribute changed used screen_shot ctrl
syntax keyword langSrcValue yes no utf8 ascii

syntax match langSrcNumber '-\=\<\d\+\>'
syntax match langSrcEscape contained /\\\([\\"0nrtab]\|x\x\x\)/
syntax match langSrcContinued contained /\\$/
syntax match langSrcBadEscape contained /\\[^\\"0nrtabxX]/
syntax match langSrcFormat contained /%\(\d\+\$\)\=[-+ #0']*\(\d\+\|\*\)\=\(\.\(\d\+\|\*\)\=\)\=\(hh\|h\|ll\|l\|j\|z\|t\|L\)\=[diouxXeEfFgGaAcspn%]/
syntax region langSrcString start=/"/ skip=/\\./ end=/"/ end=/[^\\]\zs$/ contains=langSrcEscape,langSrcContinued,langSrcBadEscape,langSrcFormat
syntax region langSrcComment start='/\*' end='\*/'
syntax match langSrcComment '//.*$'

highlight default link langSrcBlock Statement
highlight default link langSrcStatement PreProc
highlight default link langSrcAttribute Type
highlight default link langSrcValue Constant
highlight default link langSrcNumber Number
highlight default link langSrcEscape SpecialChar
highlight default link langSrcContinued SpecialChar
highlight default link langSrcBadEscape Error
highlight default link langSrcFormat Special
highlight default link langSrcString String
highlight default link langSrcComment Comment

let b:current_syntax = 'lang-src'
