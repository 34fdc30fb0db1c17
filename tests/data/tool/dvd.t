kelprofile dvd: six titles a page, one per frame of the template's
Broadband layout; page 2 has title 7, previous and play; page 1's button 7
is next.

  $ kelprofile dvd --broadband examples/dvd/film-strip.xml out /v/1 /v/2 /v/3 /v/4 /v/5 /v/6 /v/7
  wrote SCRATCH/out/menu_01_01.xml: spumux file of menu page 1 (titles 1 to 6)
  wrote SCRATCH/out/menu_01_02.xml: spumux file of menu page 2 (titles 7 to 7)
  wrote SCRATCH/out/dvdauthor.xml: dvdauthor file of the disc (7 titles on 2 menu pages)
  next, for each page NN: draw its overlay images in SCRATCH/out
    (menu_01_NN-image.png, -highlight.png, -select.png; at most 4 colours, 000000 transparent)
    and run: spumux SCRATCH/out/menu_01_NN.xml < BACKGROUND.mpg > SCRATCH/out/menu_01_NN.mpg
  then: VIDEO_FORMAT=NTSC dvdauthor -o DISC -x SCRATCH/out/dvdauthor.xml
  $ cat out/menu_01_02.xml
  <?xml version="1.0" encoding="UTF-8"?>
  <subpictures>
    <stream>
      <spu start="00:00:00:00" highlight="SCRATCH/out/menu_01_02-highlight.png" select="SCRATCH/out/menu_01_02-select.png" image="SCRATCH/out/menu_01_02-image.png" transparent="000000" force="YES">
        <button name="1" x0="40" y0="60" x1="220" y1="170"/>
        <button name="2" x0="40" y0="410" x1="160" y1="450"/>
        <button name="3" x0="300" y0="410" x1="420" y1="450"/>
      </spu>
    </stream>
  </subpictures>
  $ grep 'name="7"' out/menu_01_01.xml
        <button name="7" x0="560" y0="410" x1="680" y1="450"/>
  $ grep 'vob file=".*menu' out/dvdauthor.xml
          <vob file="SCRATCH/out/menu_01_01.mpg"/>
          <vob file="SCRATCH/out/menu_01_02.mpg"/>

A template without frames offers no titles; titles are needed.

  $ echo '<r><bgImageName>b.png</bgImageName></r>' > bare.xml
  $ kelprofile dvd bare.xml out /v/1
  bare.xml: error: the template has no frames for title buttons
  [1]
  $ kelprofile dvd examples/dvd/film-strip.xml out
  kelprofile: dvd needs TEMPLATE OUTDIR and at least one TITLE.mpg
  [2]
