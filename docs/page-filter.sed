# Links within a page and to what is no page (folders, LICENSE) become plain text; pictures stay.
s/\[\([^]]*\)\](#[^)]*)/\1/g
s/\(^\|[^!]\)\[\([^]]*\)\]([^):#]*[^):#d])/\1\2/g
