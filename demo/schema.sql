-- The database of the express network: tables, lookup tables and indexes.
-- Types are written as Oracle's and are read back through the declared types. In SQLite a DATE is stored as the text
-- 'yyyy-mm-dd hh:mm:ss', a NUMBER as an integer or a real, and an empty text never: it is null, as in Oracle.

-- Sites: outlets, centres and departments. SUPERIOR_SITE is the site that a site belongs to, FIRST_SITE its outlet of the
-- first level (directly below a centre), FINANCE_CENTER the centre that settles its fees.
CREATE TABLE TAB_SITE (
    SITE_CODE      VARCHAR2(20) NOT NULL,
    SITE_NAME      VARCHAR2(50) NOT NULL,
    SUPERIOR_SITE  VARCHAR2(50),
    FIRST_SITE     VARCHAR2(50),
    FINANCE_CENTER VARCHAR2(50),
    PROVINCE       VARCHAR2(20),
    AREA_NAME      VARCHAR2(50),
    TYPE           VARCHAR2(20)
);

-- What the centre keeps about a site: its sorting group, its truck, and whether the company runs it itself.
CREATE TABLE TAB_SITE_BASIC (
    SITE_NAME        VARCHAR2(50) NOT NULL,
    CLASS_GROUP_NAME VARCHAR2(30),
    CAR_NAME         VARCHAR2(30),
    BL_SELF          NUMBER(1)
);

-- Employees of each site; couriers belong to the department 业务部.
CREATE TABLE TAB_EMPLOYEE (
    EMPLOYEE_CODE VARCHAR2(20) NOT NULL,
    EMPLOYEE_NAME VARCHAR2(30) NOT NULL,
    OWNER_SITE    VARCHAR2(50) NOT NULL,
    DEPT_NAME     VARCHAR2(30)
);

-- Contract customers of each outlet.
CREATE TABLE TAB_CUSTOMER (
    CUSTOMER_CODE VARCHAR2(20)  NOT NULL,
    CUSTOMER_NAME VARCHAR2(100) NOT NULL,
    OWNER_SITE    VARCHAR2(50)  NOT NULL,
    LINK_MAN      VARCHAR2(30),
    PHONE         VARCHAR2(30)
);

-- Kinds of scan.
CREATE TABLE TAB_SCAN_TYPE (
    TYPE_CODE VARCHAR2(10) NOT NULL,
    TYPE_NAME VARCHAR2(20) NOT NULL
);

-- Shifts, the ways of transport among them.
CREATE TABLE TAB_CLASS (
    CLASS_CODE VARCHAR2(10) NOT NULL,
    CLASS_NAME VARCHAR2(20) NOT NULL
);

-- Goods types.
CREATE TABLE TAB_GOODS_TYPE (
    GOODS_CODE VARCHAR2(10) NOT NULL,
    GOODS_NAME VARCHAR2(20) NOT NULL
);

-- Express types.
CREATE TABLE TAB_FAST_TYPE (
    TYPE_CODE VARCHAR2(10) NOT NULL,
    TYPE_NAME VARCHAR2(20) NOT NULL
);

-- Areas, the groups of sites of one region.
CREATE TABLE TAB_AREA (
    AREA_CODE VARCHAR2(10) NOT NULL,
    AREA_NAME VARCHAR2(50) NOT NULL
);

-- Kinds of problem.
CREATE TABLE TAB_PROBLEM_TYPE (
    PROBLEM_CODE VARCHAR2(10) NOT NULL,
    PROBLEM_NAME VARCHAR2(50) NOT NULL
);

-- Transfer prices by distance, in yuan for the first and for every further kilogram.
CREATE TABLE TAB_QUOTE_DATA (
    QUOTE_CODE  VARCHAR2(10) NOT NULL,
    QUOTE_NAME  VARCHAR2(30) NOT NULL,
    FIRST_PRICE NUMBER(12,2) NOT NULL,
    NEXT_PRICE  NUMBER(12,2) NOT NULL
);

-- Settings of the company: its name (CompanyName), the regular expression of main-waybill numbers (MainBill).
CREATE TABLE TAB_GLOBAL_VALUE (
    NAME  VARCHAR2(30) NOT NULL,
    VALUE VARCHAR2(200)
);

-- Entered waybills. SEND_SITE is the entering site, BILL_CODE_SUB the list of the sub-waybill numbers, TOPAYMENT the freight
-- and GOODS_PAYMENT the price of the goods that the courier collects on delivery.
CREATE TABLE TAB_BILL (
    BILL_CODE           VARCHAR2(20) NOT NULL,
    BILL_CODE_SUB       VARCHAR2(400),
    SEND_DATE           DATE         NOT NULL,
    SEND_SITE           VARCHAR2(50) NOT NULL,
    DISPATCH_SITE       VARCHAR2(50),
    CLASS               VARCHAR2(20),
    GOODS_TYPE          VARCHAR2(20),
    GOODS_NAME          VARCHAR2(50),
    SOON_PIECE_TYPE     VARCHAR2(20),
    DISPATCH_MODE       VARCHAR2(20),
    PIECE_NUMBER        NUMBER(6),
    SETTLEMENT_WEIGHT   NUMBER(10,2),
    BALANCE_TYPE        VARCHAR2(20),
    PAYMENT_SIDE        VARCHAR2(20),
    TRANSFER_FEE        NUMBER(12,2),
    TOPAYMENT           NUMBER(12,2),
    GOODS_PAYMENT       NUMBER(12,2),
    BL_RETURN           NUMBER(1),
    BL_RETURN_BILL      NUMBER(1),
    R_BILLCODE          VARCHAR2(20),
    CUSTOMER_CODE       VARCHAR2(20),
    CUSTOMER_NAME       VARCHAR2(100),
    TAKE_PIECE_EMPLOYEE VARCHAR2(30),
    SEND_MAN            VARCHAR2(30),
    SEND_MAN_PHONE      VARCHAR2(30),
    SEND_MAN_ADDRESS    VARCHAR2(200),
    ACCEPT_MAN          VARCHAR2(30),
    ACCEPT_MAN_COMPANY  VARCHAR2(100),
    ACCEPT_MAN_PHONE    VARCHAR2(30),
    ACCEPT_MAN_ADDRESS  VARCHAR2(200),
    REGISTER_SITE       VARCHAR2(50),
    REGISTER_MAN        VARCHAR2(30),
    REGISTER_DATE       DATE,
    REMARK              VARCHAR2(200)
);

-- Pick-up scans (收件), made by the sending outlet; CUSTOMER_NAME is the contract customer, if any.
CREATE TABLE TAB_SCAN_REC (
    BILL_CODE                VARCHAR2(20) NOT NULL,
    SUB_BILL_CODE            VARCHAR2(24),
    OWNER_BAG_NO             VARCHAR2(20),
    SCAN_TYPE                VARCHAR2(20) NOT NULL,
    SCAN_SITE                VARCHAR2(50) NOT NULL,
    SCAN_DATE                DATE         NOT NULL,
    SCAN_MAN                 VARCHAR2(30),
    SCAN_MAN_CODE            VARCHAR2(20),
    REGISTER_DATE            DATE,
    DISPATCH_OR_SEND_MAN     VARCHAR2(30),
    SEND_SITE                VARCHAR2(50),
    PRE_OR_NEXT_STATION      VARCHAR2(50),
    DISPATCH_SITE            VARCHAR2(50),
    PIECE                    NUMBER(6),
    WEIGHT                   NUMBER(10,2),
    CLASS                    VARCHAR2(20),
    GOODS_TYPE               VARCHAR2(20),
    FAST_TYPE                VARCHAR2(20),
    TRANSFER_OR_DISPATCH_FEE NUMBER(12,2),
    OTHER_FEE                NUMBER(12,2),
    NET_MANAGE_FEE           NUMBER(12,2),
    CUSTOMER_NAME            VARCHAR2(100),
    TRUCK_WAY                VARCHAR2(50),
    REMARK                   VARCHAR2(200)
);

-- Send-out scans (发件, and 出库 when a centre hands a parcel to its delivering outlet); PRE_OR_NEXT_STATION is the next station.
CREATE TABLE TAB_SCAN_SEND (
    BILL_CODE                VARCHAR2(20) NOT NULL,
    SUB_BILL_CODE            VARCHAR2(24),
    OWNER_BAG_NO             VARCHAR2(20),
    SCAN_TYPE                VARCHAR2(20) NOT NULL,
    SCAN_SITE                VARCHAR2(50) NOT NULL,
    SCAN_DATE                DATE         NOT NULL,
    SCAN_MAN                 VARCHAR2(30),
    SCAN_MAN_CODE            VARCHAR2(20),
    REGISTER_DATE            DATE,
    DISPATCH_OR_SEND_MAN     VARCHAR2(30),
    SEND_SITE                VARCHAR2(50),
    PRE_OR_NEXT_STATION      VARCHAR2(50),
    DISPATCH_SITE            VARCHAR2(50),
    PIECE                    NUMBER(6),
    WEIGHT                   NUMBER(10,2),
    CLASS                    VARCHAR2(20),
    GOODS_TYPE               VARCHAR2(20),
    FAST_TYPE                VARCHAR2(20),
    TRANSFER_OR_DISPATCH_FEE NUMBER(12,2),
    OTHER_FEE                NUMBER(12,2),
    NET_MANAGE_FEE           NUMBER(12,2),
    CUSTOMER_NAME            VARCHAR2(100),
    TRUCK_WAY                VARCHAR2(50),
    REMARK                   VARCHAR2(200)
);

-- Arrival scans (到件, and 接件 at the receiving outlet); PRE_OR_NEXT_STATION is the previous station,
-- TRANSFER_OR_DISPATCH_FEE the transfer fee charged, NET_MANAGE_FEE the audited one (null: not audited).
CREATE TABLE TAB_SCAN_COME (
    BILL_CODE                VARCHAR2(20) NOT NULL,
    SUB_BILL_CODE            VARCHAR2(24),
    OWNER_BAG_NO             VARCHAR2(20),
    SCAN_TYPE                VARCHAR2(20) NOT NULL,
    SCAN_SITE                VARCHAR2(50) NOT NULL,
    SCAN_DATE                DATE         NOT NULL,
    SCAN_MAN                 VARCHAR2(30),
    SCAN_MAN_CODE            VARCHAR2(20),
    REGISTER_DATE            DATE,
    DISPATCH_OR_SEND_MAN     VARCHAR2(30),
    SEND_SITE                VARCHAR2(50),
    PRE_OR_NEXT_STATION      VARCHAR2(50),
    DISPATCH_SITE            VARCHAR2(50),
    PIECE                    NUMBER(6),
    WEIGHT                   NUMBER(10,2),
    CLASS                    VARCHAR2(20),
    GOODS_TYPE               VARCHAR2(20),
    FAST_TYPE                VARCHAR2(20),
    TRANSFER_OR_DISPATCH_FEE NUMBER(12,2),
    OTHER_FEE                NUMBER(12,2),
    NET_MANAGE_FEE           NUMBER(12,2),
    CUSTOMER_NAME            VARCHAR2(100),
    TRUCK_WAY                VARCHAR2(50),
    REMARK                   VARCHAR2(200)
);

-- Delivery scans (派件); DISPATCH_OR_SEND_MAN is the courier, TRANSFER_OR_DISPATCH_FEE the delivery fee.
CREATE TABLE TAB_SCAN_DISP (
    BILL_CODE                VARCHAR2(20) NOT NULL,
    SUB_BILL_CODE            VARCHAR2(24),
    OWNER_BAG_NO             VARCHAR2(20),
    SCAN_TYPE                VARCHAR2(20) NOT NULL,
    SCAN_SITE                VARCHAR2(50) NOT NULL,
    SCAN_DATE                DATE         NOT NULL,
    SCAN_MAN                 VARCHAR2(30),
    SCAN_MAN_CODE            VARCHAR2(20),
    REGISTER_DATE            DATE,
    DISPATCH_OR_SEND_MAN     VARCHAR2(30),
    SEND_SITE                VARCHAR2(50),
    PRE_OR_NEXT_STATION      VARCHAR2(50),
    DISPATCH_SITE            VARCHAR2(50),
    PIECE                    NUMBER(6),
    WEIGHT                   NUMBER(10,2),
    CLASS                    VARCHAR2(20),
    GOODS_TYPE               VARCHAR2(20),
    FAST_TYPE                VARCHAR2(20),
    TRANSFER_OR_DISPATCH_FEE NUMBER(12,2),
    OTHER_FEE                NUMBER(12,2),
    NET_MANAGE_FEE           NUMBER(12,2),
    CUSTOMER_NAME            VARCHAR2(100),
    TRUCK_WAY                VARCHAR2(50),
    REMARK                   VARCHAR2(200)
);

-- All other scans (装袋, 拆包, 入库, 留仓, 退件扫描, ...), told apart by SCAN_TYPE.
CREATE TABLE TAB_SCAN_OTHER (
    BILL_CODE                VARCHAR2(20) NOT NULL,
    SUB_BILL_CODE            VARCHAR2(24),
    OWNER_BAG_NO             VARCHAR2(20),
    SCAN_TYPE                VARCHAR2(20) NOT NULL,
    SCAN_SITE                VARCHAR2(50) NOT NULL,
    SCAN_DATE                DATE         NOT NULL,
    SCAN_MAN                 VARCHAR2(30),
    SCAN_MAN_CODE            VARCHAR2(20),
    REGISTER_DATE            DATE,
    DISPATCH_OR_SEND_MAN     VARCHAR2(30),
    SEND_SITE                VARCHAR2(50),
    PRE_OR_NEXT_STATION      VARCHAR2(50),
    DISPATCH_SITE            VARCHAR2(50),
    PIECE                    NUMBER(6),
    WEIGHT                   NUMBER(10,2),
    CLASS                    VARCHAR2(20),
    GOODS_TYPE               VARCHAR2(20),
    FAST_TYPE                VARCHAR2(20),
    TRANSFER_OR_DISPATCH_FEE NUMBER(12,2),
    OTHER_FEE                NUMBER(12,2),
    NET_MANAGE_FEE           NUMBER(12,2),
    CUSTOMER_NAME            VARCHAR2(100),
    TRUCK_WAY                VARCHAR2(50),
    REMARK                   VARCHAR2(200)
);

-- Signatures, one a waybill. REC_SITE is the sending site with its outlet of the first level (REC_SITE1) and its finance
-- centre; RECORD_SITE delivered the parcel, SIGN_SITE is the delivering outlet of the first level, with its finance centre.
CREATE TABLE TAB_SIGN (
    BILL_CODE        VARCHAR2(20) NOT NULL,
    STATE_NAME       VARCHAR2(20),
    SIGN_MAN         VARCHAR2(30),
    SIGN_DATE        DATE         NOT NULL,
    DISPATCH_NAME    VARCHAR2(30),
    RECORD_DATE      DATE,
    RECORD_SITE      VARCHAR2(50) NOT NULL,
    RECORD_MAN       VARCHAR2(30),
    RECORD_MAN_CODE  VARCHAR2(20),
    REC_SITE         VARCHAR2(50),
    REC_SITE1        VARCHAR2(50),
    REC_SITE_CENTER  VARCHAR2(50),
    SIGN_SITE        VARCHAR2(50),
    SIGN_SITE_CENTER VARCHAR2(50),
    DISPATCH_FEE     NUMBER(12,2),
    MODIFY_SITE      VARCHAR2(50),
    MODIFIER         VARCHAR2(30),
    MODIFIER_CODE    VARCHAR2(20),
    REMARK           VARCHAR2(200)
);

-- The signatures of one day summed by delivering and sending site; SIGN_DATE is the day at 00:00:00.
CREATE TABLE TAB_SIGN_SUM (
    SIGN_DATE    DATE         NOT NULL,
    RECORD_SITE  VARCHAR2(50) NOT NULL,
    REC_SITE     VARCHAR2(50) NOT NULL,
    BILL_COUNT   NUMBER(10)   NOT NULL,
    DISPATCH_FEE NUMBER(14,2) NOT NULL
);

-- Registered problems.
CREATE TABLE TAB_PROBLEM (
    BILL_CODE         VARCHAR2(20) NOT NULL,
    PROBLEM_TYPE      VARCHAR2(50),
    REGISTER_SITE     VARCHAR2(50),
    REGISTER_MAN      VARCHAR2(30),
    REGISTER_MAN_CODE VARCHAR2(20),
    REGISTER_DATE     DATE         NOT NULL,
    REMARK            VARCHAR2(200)
);

-- Where each parcel is now, in words.
CREATE TABLE TAB_BILL_STATUS (
    BILL_CODE    VARCHAR2(20)  NOT NULL,
    BILL_NOW_POS VARCHAR2(100) NOT NULL,
    STATUS_DATE  DATE          NOT NULL
);

-- The account list: one record for every hand-over that is settled, from an outlet to another station and from one finance
-- centre to another.
CREATE TABLE TAB_ACCOUNT_LIST (
    BILL_CODE           VARCHAR2(20) NOT NULL,
    CREATE_DATE         DATE         NOT NULL,
    PRE_STATION         VARCHAR2(50),
    PRE_FINANCE_CENTER  VARCHAR2(50),
    NEXT_STATION        VARCHAR2(50),
    NEXT_FINANCE_CENTER VARCHAR2(50),
    WEIGHT              NUMBER(10,2),
    TRANSFER_FEE        NUMBER(12,2)
);

-- Indexes, made after the rows. In SQLite the equality column of a screen's conditions stands before the range column. What stands
-- behind SCAN_DATE lets the months' lists, and the latest arrival of a parcel, be answered from the index alone: a site's rows of a
-- month lie all over the table.

CREATE UNIQUE INDEX TAB_SITE_U ON TAB_SITE (SITE_NAME);
CREATE UNIQUE INDEX TAB_SITE_P ON TAB_SITE (SITE_CODE);
CREATE UNIQUE INDEX TAB_SITE_BASIC_P ON TAB_SITE_BASIC (SITE_NAME);
CREATE INDEX TAB_EMPLOYEE_I ON TAB_EMPLOYEE (OWNER_SITE, DEPT_NAME);
CREATE UNIQUE INDEX TAB_EMPLOYEE_P ON TAB_EMPLOYEE (EMPLOYEE_CODE);
CREATE UNIQUE INDEX TAB_CUSTOMER_P ON TAB_CUSTOMER (CUSTOMER_CODE);
CREATE UNIQUE INDEX TAB_BILL_P ON TAB_BILL (BILL_CODE);
CREATE INDEX TAB_BILL_I ON TAB_BILL (SEND_SITE, SEND_DATE);
CREATE INDEX TAB_BILL_I2 ON TAB_BILL (SEND_DATE);
CREATE INDEX TAB_SCAN_REC_I ON TAB_SCAN_REC (BILL_CODE, SCAN_SITE, SCAN_DATE);
CREATE INDEX TAB_SCAN_REC_I3 ON TAB_SCAN_REC
    (SCAN_SITE, SCAN_DATE, DISPATCH_OR_SEND_MAN, CUSTOMER_NAME, SUB_BILL_CODE, WEIGHT, TRANSFER_OR_DISPATCH_FEE, BILL_CODE);
CREATE INDEX TAB_SCAN_SEND_I ON TAB_SCAN_SEND (BILL_CODE, SCAN_SITE, SCAN_DATE);
CREATE INDEX TAB_SCAN_SEND_I3 ON TAB_SCAN_SEND (SCAN_SITE, SCAN_DATE, PRE_OR_NEXT_STATION, SUB_BILL_CODE, WEIGHT, BILL_CODE);
CREATE INDEX TAB_SCAN_COME_I ON TAB_SCAN_COME (BILL_CODE, SCAN_SITE, SCAN_DATE, PRE_OR_NEXT_STATION, WEIGHT);
CREATE INDEX TAB_SCAN_COME_I3 ON TAB_SCAN_COME (SCAN_SITE, SCAN_DATE);
CREATE INDEX TAB_SCAN_COME_P ON TAB_SCAN_COME (SCAN_DATE, SCAN_SITE);
CREATE INDEX TAB_SCAN_DISP_I ON TAB_SCAN_DISP (BILL_CODE, SCAN_SITE, SCAN_DATE);
CREATE INDEX TAB_SCAN_DISP_I3 ON TAB_SCAN_DISP (SCAN_SITE, SCAN_DATE);
CREATE INDEX TAB_SCAN_OTHER_I ON TAB_SCAN_OTHER (BILL_CODE, SCAN_SITE, SCAN_DATE);
CREATE INDEX TAB_SCAN_OTHER_P ON TAB_SCAN_OTHER (SCAN_SITE, SCAN_DATE);
CREATE INDEX TAB_SCAN_OTHER_I3 ON TAB_SCAN_OTHER (SCAN_TYPE, SCAN_DATE);
CREATE INDEX TAB_SIGN_I1 ON TAB_SIGN (BILL_CODE);
CREATE INDEX TAB_SIGN_I2 ON TAB_SIGN (SIGN_SITE_CENTER, SIGN_DATE);
CREATE INDEX TAB_SIGN_I3 ON TAB_SIGN (RECORD_SITE, SIGN_DATE);
CREATE INDEX TAB_SIGN_SUM_I ON TAB_SIGN_SUM (RECORD_SITE, SIGN_DATE);
CREATE INDEX TAB_PROBLEM_I ON TAB_PROBLEM (BILL_CODE);
CREATE UNIQUE INDEX TAB_BILL_STATUS_P ON TAB_BILL_STATUS (BILL_CODE);
CREATE INDEX TAB_ACCOUNT_LIST_I6 ON TAB_ACCOUNT_LIST (PRE_FINANCE_CENTER, CREATE_DATE, PRE_STATION);
