kelprofile publish writes the published player's media list and add-ons
list of a project.

  $ kelprofile publish examples/webplayer/travel-showreel.xml site
  wrote site/playlist.xml: media list (3 play items)
  wrote site/addonsList.xml: add-ons list (3 add-ons)
  $ cat site/playlist.xml site/addonsList.xml
  <?xml version="1.0" encoding="UTF-8"?>
  <playlist>
    <playitem caption="山间清晨" path="media/mountain-morning.flv" image="thumbs/mountain-morning.jpg" options="autoplay=1" clickurl="http://example.com/mountains" clicktarget="_blank" endurl="http://example.com/next" styleoftarget="popup" endtarget="_self">
      <advertitem position="pre" duration="15" videotype="flv" filepath="ads/tea-house.flv" clickurl="http://example.com/tea" clicktarget="_blank" sound="80" fadein="2" fadeout="1" options="skippable=1"/>
      <watermarkitem position="always" duration="0" videotype="png" filepath="marks/logo.png" clickurl="http://example.com" clicktarget="_blank" fadein="1" fadeout="1" origin="topright" offsetleft="-12" offsettop="10" width="96" height="32" transparency="60" options=""/>
    </playitem>
    <playitem caption="古城夜景" path="media/old-town-night.flv" image="thumbs/old-town-night.jpg" options="" clickurl="" clicktarget="" endurl="" styleoftarget="" endtarget="">
      <advertitem position="mid" duration="10" videotype="swf" filepath="ads/lantern-festival.swf" clickurl="http://example.com/lanterns" clicktarget="_blank" sound="50" fadein="0" fadeout="0" options=""/>
      <watermarkitem position="bottom" duration="30" videotype="swf" filepath="marks/sparkle.swf" clickurl="" clicktarget="" fadein="0" fadeout="2" origin="bottomleft" offsetleft="8" offsettop="-8" width="120" height="60" transparency="80" sound="40" swfwidth="240" swfheight="120" options="loop=1"/>
    </playitem>
    <playitem caption="海边日落" path="media/seaside-sunset.flv" image="thumbs/seaside-sunset.jpg" options="" clickurl="http://example.com/sea" clicktarget="_self" endurl="" styleoftarget="" endtarget="">
      <advertitem position="post" duration="5" videotype="jpg" filepath="ads/ferry-timetable.jpg" clickurl="http://example.com/ferry" clicktarget="_blank" fadein="1" fadeout="1" options=""/>
      <watermarkitem position="top" duration="20" videotype="text" filepath="" clickurl="" clicktarget="" fadein="1" fadeout="1" origin="topleft" offsetleft="16" offsettop="16" width="300" height="40" transparency="100" fontname="Noto Sans CJK SC" fontsize="18" fontcolor="0xffffff" fontstyle="bold" options=""/>
    </playitem>
  </playlist>
  <?xml version="1.0" encoding="UTF-8"?>
  <addonsList>
    <addonsItem href="addons/share-buttons.swf"/>
    <addonsItem/>
    <addonsItem href="addons/related-videos.swf"/>
  </addonsList>
  $ kelprofile publish site
  kelprofile: publish needs PROJECT and OUTDIR
  [2]
