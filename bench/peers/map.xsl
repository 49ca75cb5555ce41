<?xml version="1.0"?>
<!-- A native XML document to OpenConfig. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:o="urn:vantra:talin:controller-kestrel-ots-oper"
                xmlns="http://openconfig.net/yang/channel-monitor" exclude-result-prefixes="o">
  <xsl:output method="xml" indent="yes" omit-xml-declaration="yes"/>

  <xsl:template match="/">
    <channel-monitors>
      <xsl:apply-templates select="o:ots-oper/o:ots-ports/o:ots-port"/>
    </channel-monitors>
  </xsl:template>

  <xsl:template match="o:ots-port">
    <xsl:variable name="prefix" select="concat(substring(o:name, 4, 1), '/', substring(o:name, 6, 1))"/>
    <xsl:variable name="port" select="substring(o:name, 10, 1)"/>
    <xsl:variable name="name">
      <xsl:value-of select="$prefix"/>
      <xsl:choose>
        <xsl:when test="$port = '0'">-CHMON-BST</xsl:when>
        <xsl:otherwise>-CHMON-PRE</xsl:otherwise>
      </xsl:choose>
    </xsl:variable>
    <channel-monitor>
      <name><xsl:value-of select="$name"/></name>
      <state>
        <name><xsl:value-of select="$name"/></name>
        <monitor-port><xsl:value-of select="concat($prefix, '-OtsCtrl-0/', $port)"/></monitor-port>
      </state>
      <channels>
        <xsl:apply-templates select="o:ots-spectrum-info/o:spectrum-slice-power-info"/>
      </channels>
    </channel-monitor>
  </xsl:template>

  <xsl:template match="o:spectrum-slice-power-info">
    <channel>
      <lower-frequency><xsl:value-of select="o:lower-frequency"/></lower-frequency>
      <state>
        <lower-frequency><xsl:value-of select="o:lower-frequency"/></lower-frequency>
        <upper-frequency><xsl:value-of select="o:upper-frequency"/></upper-frequency>
        <xsl:if test="o:rx-power">
          <power><xsl:value-of select="format-number(o:rx-power div 100, '0.00')"/></power>
        </xsl:if>
      </state>
      <upper-frequency><xsl:value-of select="o:upper-frequency"/></upper-frequency>
    </channel>
  </xsl:template>
</xsl:stylesheet>
