SELECT promotion.promotion_name, count(*) AS lines, sum(sales.amount) AS amount
FROM sales
LEFT JOIN promotion ON sales.promotion_key = promotion.promotion_key
GROUP BY promotion.promotion_name
ORDER BY promotion.promotion_name;
