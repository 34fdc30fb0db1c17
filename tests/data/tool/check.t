check counts what it meets and names what does not survive a rewrite. GBK
cannot hold the snowman, and its UTF-8 bytes kept in the record are no GBK
text to write back.

  $ mkdir -p f/sub
  $ printf '<tempOption><optionItem name="profileName">\344\270\255\346\226\207</optionItem></tempOption>' > f/good.xml
  $ echo '<unknownRoot/>' > f/sub/other.xml && echo 'not looked at' > f/notes.txt
  $ kelprofile check f
  ok      f/good.xml (temporary options)
  skip    f/sub/other.xml:1: error: root element "unknownRoot" is not one kelprofile knows; it knows "Profiles" (conversion profiles), "root" (customizations), "ZorvanWebPlayerPrj" (web-player projects), "tempOption" (temporary options), "groupOption" (option groups), "products" (product information), any root holding template elements such as "frames" (DVD menu template)
  2 files: 1 ok, 0 failed, 1 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 2, praseDVDXMLFolder 2, praseOPtionXMLFolder 2
  $ printf '<tempOption><optionItem name="a">\342\230\203</optionItem></tempOption>' > f/lossy.xml
  $ kelprofile check f
  ok      f/good.xml (temporary options)
  ok      f/lossy.xml (temporary options)
  skip    f/sub/other.xml:1: error: root element "unknownRoot" is not one kelprofile knows; it knows "Profiles" (conversion profiles), "root" (customizations), "ZorvanWebPlayerPrj" (web-player projects), "tempOption" (temporary options), "groupOption" (option groups), "products" (product information), any root holding template elements such as "frames" (DVD menu template)
  3 files: 2 ok, 0 failed, 1 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 3, praseDVDXMLFolder 3, praseOPtionXMLFolder 3

An entry without a status (a dangling link here) is passed over by check and
by the library's folder loaders alike.

  $ ln -s gone f/dangling && kelprofile check f 2>&1 | tail -2
  3 files: 2 ok, 0 failed, 1 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 3, praseDVDXMLFolder 3, praseOPtionXMLFolder 3
  $ kelprofile check examples | tail -2
  15 files: 13 ok, 0 failed, 2 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 14, praseDVDXMLFolder 14, praseOPtionXMLFolder 14
